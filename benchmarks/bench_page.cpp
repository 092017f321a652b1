// SPDX-License-Identifier: GPL-3.0-or-later
// The measurement page and its log at a million rows: what a row takes in memory, and how long a
// log takes to come back onto the page compared with just reading the file and splitting its lines
// at the TABs. Ends with status 1 when a bound is missed.

#include <malloc.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "figure.h"
#include "measurement_line.h"
#include "measurement_log.h"
#include "page_model.h"

namespace {

constexpr int kRows = 1000000;
constexpr int kRuns = 5;
constexpr double kMostBytesPerRow = 200;
constexpr double kMostTimesTheSplit = 3;

using Fields = std::vector<std::string_view>;

QStringList digital_row(int number) {
    return {QStringLiteral("21/11/26"),
            QStringLiteral("%1:%2:%3")
                .arg(number / 3600 % 24, 2, 10, QLatin1Char('0'))
                .arg(number / 60 % 60, 2, 10, QLatin1Char('0'))
                .arg(number % 60, 2, 10, QLatin1Char('0')),
            QString::number(950 + number % 1200) + QStringLiteral(".5"),
            QStringLiteral("10600"),
            QStringLiteral("58.3"),
            QStringLiteral("<1.0E-8"),
            QStringLiteral("2.0E-4"),
            QStringLiteral("1.25"),
            QStringLiteral("14.2"),
            QStringLiteral("3"),
            number % 7 == 0 ? QStringLiteral("FAIL") : QStringLiteral("PASS")};
}

double resident_bytes() {
    malloc_trim(0);
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Median of `kRuns` runs in milliseconds; `after` is not timed.
double median_ms(
    const std::function<void()>& run, const std::function<void()>& after = [] {}) {
    std::vector<double> times;
    for (int k = 0; k < kRuns; ++k) {
        QElapsedTimer timer;
        timer.start();
        run();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        after();
    }
    std::sort(times.begin(), times.end());
    return times[kRuns / 2];
}

std::string read_file(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    std::string bytes(static_cast<std::size_t>(file.size()), '\0');
    bytes.resize(
        static_cast<std::size_t>(std::max<qint64>(0, file.read(bytes.data(), file.size()))));
    return bytes;
}

void split_at_tabs(std::string_view line, Fields& fields) {
    for (;;) {
        const std::size_t tab = line.find('\t');
        fields.push_back(line.substr(0, tab));
        if (tab == std::string_view::npos) return;
        line.remove_prefix(tab + 1);
    }
}

/// Calls `take` with each line, its CR LF taken off.
template <typename Take>
void each_line(std::string_view text, Take take) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        std::string_view line = text.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        take(line);
        text.remove_prefix(end + 1);
    }
}

/// One vector of views that every line uses anew: nothing is kept.
std::size_t split_and_forget(const QString& path) {
    const std::string text = read_file(path);
    std::size_t sum = 0;
    Fields fields;
    each_line(text, [&](std::string_view line) {
        fields.clear();
        split_at_tabs(line, fields);
        sum += fields.size();
    });
    return sum;
}

/// A vector of views for each line, all kept beside the text.
std::size_t split_and_keep(const QString& path) {
    const std::string text = read_file(path);
    std::vector<Fields> lines;
    each_line(text, [&](std::string_view line) { split_at_tabs(line, lines.emplace_back()); });
    return lines.size() * lines.back().size();
}

bool report_memory(const char* what, double stored, double resident) {
    std::printf("%-34s %6.1f bytes/row counted, %6.1f resident (bound %.0f)\n", what,
                stored / kRows, resident / kRows, kMostBytesPerRow);
    return stored / kRows <= kMostBytesPerRow && resident / kRows <= kMostBytesPerRow;
}

/// Appends all rows to a page of its own and writes them to `path`. Leaves the time in `ms`.
bool measure_append(const QString& path, double& ms) {
    std::vector<QStringList> rows;
    std::vector<m47::measurement::Measurement> measured;
    for (int k = 0; k < 1000; ++k) {
        rows.push_back(digital_row(k * 37));
        const QByteArray line = rows.back().join(u'\t').toLatin1();
        measured.push_back(
            m47::measurement::measurement_of_line({line.data(), std::size_t(line.size())}));
        measured.back().program = {QStringLiteral("ASTRA"), QString::number(k % 30)};
        measured.back().unit = m47::kDbuv;
        measured.back().limits[0] = m47::measurement::Limits{45, 80};
    }

    const double before = resident_bytes();
    m47::measurement::PageModel page;
    QElapsedTimer timer;
    timer.start();
    for (int k = 0; k < kRows; ++k) {
        const std::size_t place = static_cast<std::size_t>(k) % rows.size();
        page.append(rows[place], measured[place]);
    }
    ms = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    const double resident = resident_bytes() - before;
    std::printf("%-34s %8.1f ms, %.0f ns a row\n", "append 1,000,000 rows", ms, ms * 1e6 / kRows);
    const bool small = report_memory("memory, appended",
                                     static_cast<double>(page.store().memory_bytes()), resident);

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    for (int row = 0; row < kRows; ++row) {
        const std::string_view line = page.store().line(row);
        file.write(line.data(), static_cast<qint64>(line.size()));
        file.write("\r\n");
    }
    file.close();
    return small && file.error() == QFile::NoError;
}

bool measure_reload(const QString& path, double append) {
    m47::measurement::PageModel page;
    m47::measurement::MeasurementLog log;
    const double before = resident_bytes();
    log.open(path, page);
    const double resident = resident_bytes() - before;
    const bool whole = page.measurements() == kRows;
    const bool small = report_memory("memory, reloaded",
                                     static_cast<double>(page.store().memory_bytes()), resident);
    page.clear();

    const double reload = median_ms([&] { log.open(path, page); }, [&] { page.clear(); });
    std::size_t fields = 0;
    const double forget = median_ms([&] { fields = split_and_forget(path); });
    const double keep = median_ms([&] { fields = std::min(fields, split_and_keep(path)); });
    std::printf("%-34s %8.1f ms  1.00\n", "read and split, one vector reused", forget);
    std::printf("%-34s %8.1f ms  %.2f\n", "read and split, vector a line kept", keep,
                keep / forget);
    std::printf("%-34s %8.1f ms  %.2f (bound %.0f), %.2f of the kept split\n",
                "reload 1,000,000 lines", reload, reload / forget, kMostTimesTheSplit,
                reload / keep);
    bench::print_figure("append to the page, 1,000,000 rows", append / forget, kMostTimesTheSplit,
                        "reading and splitting the same lines");
    bench::print_figure("reload of 1,000,000 lines", reload / forget, kMostTimesTheSplit,
                        "reading and splitting the same file");
    return whole && small && fields == std::size_t{kRows} * 11 &&
           reload <= kMostTimesTheSplit * forget;
}

}  // namespace

int main() {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("million.log"));
    double append = 0;
    const bool appended = measure_append(path, append);
    std::printf("%-34s %8.1f bytes a line\n", "log file",
                static_cast<double>(QFile(path).size()) / kRows);
    const bool reloaded = measure_reload(path, append);
    std::puts(appended && reloaded ? "within the bounds" : "A BOUND IS MISSED");
    return appended && reloaded ? 0 : 1;
}
