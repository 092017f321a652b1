// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_words.h"

#include <QDateTime>
#include <QStringList>
#include <algorithm>
#include <cstdlib>

namespace m47::sites {
namespace {

constexpr Bilingual kStillOpen{"not ended", "non conclusa"};
constexpr int kLongestStem = 40;

QDateTime wall_time(double seconds) {
    constexpr int kThousand = 1000;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(seconds * kThousand), Qt::UTC);
}

/// "UTC+1", "UTC-3:30".
QString offset_text(int seconds) {
    constexpr int kMinute = 60;
    const int minutes = std::abs(seconds) / kMinute;
    const QString text =
        QStringLiteral("UTC%1%2").arg(QChar(seconds < 0 ? u'-' : u'+')).arg(minutes / kMinute);
    const int rest = minutes % kMinute;
    return rest == 0 ? text : text + QStringLiteral(":%1").arg(rest, 2, 10, QChar(u'0'));
}

QString joined(QStringList facts) {
    for (QString& each : facts) each = each.simplified();
    facts.removeAll(QString());
    return facts.join(QStringLiteral(" · "));
}

}  // namespace

QString visit_time(const Visit& visit) {
    return wall_time(visit.begun.wall()).toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString visit_time(const Visit& visit, const std::vector<Visit>& beside) {
    const QString time = visit_time(visit);
    const bool is_twice = std::ranges::any_of(beside, [&](const Visit& other) {
        return other.begun.offset != visit.begun.offset && visit_time(other) == time;
    });
    return is_twice ? QStringLiteral("%1 (%2)").arg(time, offset_text(visit.begun.offset)) : time;
}

QDate day_of(const Instant& instant) {
    return wall_time(instant.wall()).date();
}

double midnight_of(const QDate& day) {
    return static_cast<double>(day.startOfDay(Qt::UTC).toSecsSinceEpoch());
}

QString visit_facts(const Visit& visit, const Texts& texts) {
    return joined({visit.ended ? QString() : texts.pick(kStillOpen), visit.technician, visit.plan,
                   visit.instrument, visit.logo, visit.remarks});
}

QString site_facts(const Site& site) {
    return joined({site.customer, site.address, site.remarks});
}

QString file_stem(const Site& site, const QString& what) {
    QString stem;
    for (const QChar each : site.name.simplified().left(kLongestStem))
        stem += each.isLetterOrNumber() ? each : QChar(u'-');
    return stem.isEmpty() ? what : stem + u'-' + what;
}

}  // namespace m47::sites
