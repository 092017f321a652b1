// SPDX-License-Identifier: GPL-3.0-or-later
#include "log_import.h"

#include <QDateTime>
#include <QHash>
#include <cmath>
#include <string_view>

#include "log_cells.h"
#include "log_lines.h"
#include "measurement_line.h"

namespace m47::sites {
namespace {

constexpr Bilingual kLogTooLong{"This file is longer than a log that can be imported.",
                                "Questo file è più lungo di un log che si possa importare."};
constexpr Bilingual kNoLog{"This is no log: more than %1 of its lines cannot be read.",
                           "Questo non è un log: più di %1 righe non si possono leggere."};

constexpr float kHighestFirstIf = 2150;  // MHz

/// Of a line that cannot be read so much is told.
constexpr std::size_t kToldLine = 200;

QByteArray bytes_of(std::string_view line) {
    return {line.data(), static_cast<qsizetype>(line.size())};
}

/// Makes visits of lines, one after the other.
class LogReader {
  public:
    LogPreview preview;

    LogReader(const QString& name, const Site& site, const QTimeZone& zone)
        : name_(name), site_(site), zone_(zone) {
        preview.zone = QString::fromLatin1(zone.id());
    }

    /// False once this is no log.
    bool take(std::string_view line) {
        ++number_;
        if (const std::optional<Said> why = why_unread(line)) {
            const std::string_view told = line.substr(0, kToldLine);
            preview.unread.push_back(
                {number_, *why,
                 QString::fromLatin1(told.data(), static_cast<qsizetype>(told.size()))});
            return preview.unread.size() <= kMostUnread;
        }
        add(line);
        return true;
    }

  private:
    void add(std::string_view line) {
        const measurement::Measurement read = as_tuned(measurement::measurement_of_line(line));
        const Instant instant = instant_at(*read.instant);
        if (preview.visits.empty() || std::fabs(*read.instant - last_) > kVisitGap)
            begin(line, instant);
        last_ = *read.instant;
        LogVisit& visit = preview.visits.back();
        const QByteArray bytes = bytes_of(line);
        const QByteArray own = bytes + '\n' + QByteArray::number(++lines_[bytes]);
        visit.whole.rows.push_back({.id = QUuid::createUuidV5(visit.whole.visit.id, own),
                                    .visit = visit.whole.visit.id,
                                    .instant = instant,
                                    .measurement = read});
        stretch(visit.whole.visit, instant);
        visit.lines.push_back(number_);
    }

    /// A line has the oscillator of the box also where the meter was tuned in the first IF: an LNB
    /// receives nothing there.
    static measurement::Measurement as_tuned(measurement::Measurement read) {
        if (read.frequency && *read.frequency <= kHighestFirstIf) read.oscillator.reset();
        return read;
    }

    /// A clock that is set back takes nothing from the time of a visit.
    static void stretch(Visit& visit, const Instant& instant) {
        if (instant.utc < visit.begun.utc) visit.begun = instant;
        if (!visit.ended || instant.utc > visit.ended->utc) visit.ended = instant;
    }

    void begin(std::string_view line, const Instant& instant) {
        const QByteArray bytes = bytes_of(line);
        const QByteArray own = "visit\n" + bytes + '\n' + QByteArray::number(++visits_[bytes]);
        lines_.clear();
        preview.visits.push_back({});
        preview.visits.back().whole.visit = {.id = QUuid::createUuidV5(site_.id, own),
                                             .site = site_.id,
                                             .begun = instant,
                                             .remarks = name_};
    }

    Instant instant_at(double wall) const {
        const QDateTime shown = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(wall), Qt::UTC);
        const int offset = QDateTime(shown.date(), shown.time(), zone_).offsetFromUtc();
        return {wall - offset, offset};
    }

    QString name_;
    Site site_;
    QTimeZone zone_;
    int number_ = 0;
    double last_ = 0;
    // How often a line came already: in the visit, and as the first of one.
    QHash<QByteArray, int> lines_;
    QHash<QByteArray, int> visits_;
};

}  // namespace

LogPreview read_log(const QByteArray& bytes, const QString& name, const Site& site,
                    const QTimeZone& zone) {
    LogPreview refused;
    refused.refused = Said{kLogTooLong, {}};
    if (bytes.size() > kMostLog) return refused;
    LogReader reader(name, site, zone);
    const std::string_view text(bytes.data(), static_cast<std::size_t>(bytes.size()));
    const bool whole = measurement::each_log_line(
        text, [&reader](std::string_view line) { return reader.take(line); });
    refused.refused = Said{kNoLog, {QString::number(kMostUnread)}};
    return whole ? std::move(reader.preview) : refused;
}

SiteFile site_file_of(const LogPreview& log, const Site& site) {
    SiteFile file{{site, {}}};
    for (const LogVisit& visit : log.visits) file.front().visits.push_back(visit.whole);
    return file;
}

}  // namespace m47::sites
