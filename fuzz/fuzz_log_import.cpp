// SPDX-License-Identifier: GPL-3.0-or-later
// A log that becomes visits: each line becomes a measurement or is listed, the same log gives the
// same ids, and what came of it goes through a file of sites.
#include <QSet>
#include <cmath>

#include "fuzzing.h"
#include "log_import.h"
#include "log_lines.h"

namespace {

using namespace m47::sites;

const Site kSite{.id = QUuid::fromString(QStringLiteral("2f6a5f3e-6a0c-4f0c-9a57-0c8f6f1f7a10")),
                 .name = QStringLiteral("Sole")};

LogPreview read(const QByteArray& bytes) {
    static const QTimeZone zone("Europe/Rome");
    return read_log(bytes, QStringLiteral("rows.log"), kSite, zone);
}

/// Every line is there once, in its order.
void check_lines(const LogPreview& log, std::string_view text) {
    int lines = 0;
    m47::measurement::each_log_line(text, [&lines](std::string_view) { return ++lines > 0; });
    QSet<int> numbers;
    int last = 0;
    for (const LogVisit& visit : log.visits) {
        HOLDS(!visit.lines.empty() && visit.lines.size() == visit.whole.rows.size());
        for (const int number : visit.lines) {
            HOLDS(number > last && number <= lines);
            numbers.insert(last = number);
        }
    }
    for (const UnreadLine& line : log.unread) {
        HOLDS(!numbers.contains(line.number) && line.number > 0 && line.number <= lines);
        HOLDS(!line.why.in(m47::Texts()).isEmpty());
        numbers.insert(line.number);
    }
    HOLDS(numbers.size() == lines);
}

void check_rows(const LogPreview& log) {
    QSet<QUuid> ids;
    for (const LogVisit& visit : log.visits) {
        HOLDS(!ids.contains(visit.whole.visit.id));
        ids.insert(visit.whole.visit.id);
        for (const VisitMeasurement& row : visit.whole.rows) {
            HOLDS(!ids.contains(row.id) && row.visit == visit.whole.visit.id);
            ids.insert(row.id);
            HOLDS(row.measurement.instant == row.instant.wall());
            HOLDS(!row.measurement.unit && !row.measurement.program.known());
            for (const auto& reading : row.measurement.readings)
                HOLDS(!reading.measured() || std::isfinite(reading.value));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzzing::Input input(data, size);
    const LogPreview log = read(input.byte_array());
    HOLDS(!log.refused);
    check_lines(log, input.bytes());
    check_rows(log);
    const QByteArray file = site_file_bytes(site_file_of(log, kSite));
    HOLDS(site_file_bytes(site_file_of(read(input.byte_array()), kSite)) == file);
    const SiteFileRead again = read_site_file(file);
    HOLDS(!again.refused && site_file_bytes(again.sites) == file);
    return 0;
}
