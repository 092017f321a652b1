// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_options.h"

#include <QLocale>
#include <cmath>

#include "option_words.h"
#include "site_file.h"

namespace m47::unattended {
namespace {

constexpr double kMostDecibels = 100;

QString read_compared(const QCommandLineParser& parser, VisitOptions& visit) {
    const QString name = QStringLiteral("compare-with");
    if (!parser.isSet(name)) return {};
    const QString which = parser.value(name);
    using enum VisitOptions::Compared;
    if (which == QLatin1String("first")) visit.compared = first;
    if (which == QLatin1String("last")) visit.compared = last;
    if (visit.compared != none) return {};
    visit.date = QDate::fromString(which, Qt::ISODate);
    if (!visit.date.isValid())
        return refused(
            QStringLiteral("--compare-with takes first, last or a date such as 2026-11-22"), which);
    visit.compared = of_date;
    return {};
}

QString read_decibels(const QCommandLineParser& parser, VisitOptions& visit) {
    const QString name = QStringLiteral("worse-than");
    if (!parser.isSet(name)) return {};
    bool good = false;
    const QString text = parser.value(name);
    const double decibels =
        QString(text).replace(QLocale().decimalPoint(), QStringLiteral(".")).toDouble(&good);
    if (!good || !std::isfinite(decibels) || decibels < 0 || decibels > kMostDecibels)
        return refused(
            QStringLiteral("--worse-than takes a number from 0 to %1 dB").arg(kMostDecibels), text);
    visit.worse_than = decibels;
    return {};
}

}  // namespace

QString read_visit(const QCommandLineParser& parser, Options& options) {
    options.visit.site = parser.value(QStringLiteral("site")).simplified();
    options.visit.resumed = parser.isSet(QStringLiteral("resume-visit"));
    if (options.visit.site.size() > sites::kMostSiteText)
        return QStringLiteral("--site takes a name of at most %1 characters")
            .arg(sites::kMostSiteText);
    const QString error = read_compared(parser, options.visit);
    return error.isEmpty() ? read_decibels(parser, options.visit) : error;
}

QString check_visit(const QCommandLineParser& parser) {
    const auto lacks = [&parser](const char* option, const char* needed) {
        return parser.isSet(QLatin1String(option)) && !parser.isSet(QLatin1String(needed));
    };
    if (lacks("resume-visit", "site")) return QStringLiteral("--resume-visit needs --site");
    if (lacks("compare-with", "site")) return QStringLiteral("--compare-with needs --site");
    if (lacks("worse-than", "compare-with"))
        return QStringLiteral("--worse-than needs --compare-with");
    return {};
}

}  // namespace m47::unattended
