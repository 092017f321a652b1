// SPDX-License-Identifier: GPL-3.0-or-later
// A file of 2,000 sites, 20,000 visits and 2,000,000 measurements: how large it is against the same
// rows in tables without an index, how long what the screens ask of it takes against the very same
// statements run by the bare database library, and what storing a row adds to a measurement.
#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <vector>

#include "bare_library.h"
#include "event_loop_view.h"
#include "figure.h"
#include "paced_meter.h"
#include "real_clock.h"
#include "real_port.h"
#include "realtime_rules.h"
#include "site_search.h"
#include "site_store.h"
#include "visit_comparison.h"
#include "visit_recorder.h"

namespace {

using namespace std::chrono_literals;
using namespace m47;

constexpr int kSites = 2000;
constexpr int kVisits = 20'000;
constexpr int kRows = 100;  ///< of a visit
constexpr int kPrograms = 25;
constexpr int kVisitsOfFirst = 100;
constexpr int kRuns = 40;
constexpr int kCycles = 5;
constexpr int kStores = 200;
constexpr double kMostTimesTheLibrary = 1.5;
constexpr double kMostMilliseconds = 100;
constexpr double kMostOfTheSize = 1.1;
constexpr double kMostOfTheCycle = 1.02;
const char* const kSafely = "PRAGMA synchronous = FULL";

/// Of the runs the one that nothing else disturbed.
double least(const std::vector<double>& values) {
    return *std::ranges::min_element(values);
}

QString text(const char* words, int number) {
    return QString::fromUtf8(words).arg(number);
}

sites::Site site_of(int number) {
    return {.id = QUuid::createUuid(),
            .name = text("Condominio %1", number),
            .address = text("Via Garibaldi %1, Città", number % 300),
            .customer = text("Amministrazione %1", number % 70),
            .remarks = text("antenna sul tetto, scala %1", number % 9)};
}

sites::Visit visit_of(const sites::Site& site, int number) {
    const double begun = 1.6e9 + number * 5000.0;
    return {.id = QUuid::createUuid(),
            .site = site.id,
            .begun = {begun, 3600},
            .ended = sites::Instant{begun + 900, 3600},
            .technician = text("Tecnico %1", number % 12),
            .instrument = QStringLiteral("V3.1.0 PLUS"),
            .logo = QStringLiteral("ANTENNE ROSSI"),
            .plan = QStringLiteral("ASTRA"),
            .remarks = number % 40 == 0 ? text("guasto %1", number) : QString()};
}

/// A digital row of a program of the plan; one in twenty failed.
measurement::Measurement measured(int visit, int row) {
    const int program = row % kPrograms;
    const auto jitter = [&](int of) {
        return static_cast<float>((visit * 31 + row * of) % 20) / 10;
    };
    measurement::Measurement made;
    made.program = {QStringLiteral("ASTRA"), QString::number(program).rightJustified(3, u'0')};
    made.mode = measurement::MeasureMode::digital;
    made.frequency = 10714.0F + static_cast<float>(program) * 29.5F;
    made.oscillator = 9750.0F;
    made.readings = {{{58.3F + jitter(7), {}},
                      {(1.1F + jitter(3)) * 1e-5F, {}},
                      {12.1F + jitter(5), {}},
                      {1e-8F, measurement::RangeMark::below},
                      {0.1F + jitter(2), {}},
                      {13.3F + jitter(9), {}},
                      {}}};
    made.unit = kDbuv;
    made.limits[0] = measurement::Limits{45, 75};
    made.limits[2] = measurement::Limits{9, std::nullopt};
    made.verdict =
        (visit + row) % 20 == 0 ? measurement::Verdict::fail : measurement::Verdict::pass;
    return made;
}

struct Filled {
    std::vector<sites::Site> sites;
    std::vector<sites::Visit> of_first;  ///< visits of the first site
};

/// As a recorder leaves it, many rows at once.
Filled fill(sites::SiteStore& store) {
    Filled filled;
    store.together([&] {
        for (int number = 0; number < kSites; ++number) {
            filled.sites.push_back(site_of(number));
            store.store(filled.sites.back());
        }
    });
    sites::VisitRecorder recorder(store);
    for (int number = 0; number < kVisits; ++number) {
        const int place = number < kVisitsOfFirst ? 0 : number % kSites;
        const sites::Visit visit = visit_of(filled.sites[static_cast<std::size_t>(place)], number);
        if (place == 0) filled.of_first.push_back(visit);
        store.together([&] {
            store.store(visit);
            recorder.resume(visit.id);
            for (int row = 0; row < kRows; ++row) {
                measurement::Measurement one = measured(number, row);
                one.instant = visit.begun.wall() + row * 7;
                recorder.take(one, visit.begun.offset);
            }
            recorder.end(QDateTime::currentDateTime());
        });
    }
    return filled;
}

/// The same rows in tables without an index; the bytes of their file.
qint64 bare_size(const QString& path, const QString& bare) {
    bench::BareLibrary library(path, kSafely);
    bench::Statements statements{"ATTACH '" + bare.toStdString() + "' AS bare"};
    for (const char* table : {"sites", "visits", "programs", "limits", "measurements"})
        statements.push_back(std::string("CREATE TABLE bare.") + table + " AS SELECT * FROM main." +
                             table);
    if (!library.run(statements)) return 0;
    return QFileInfo(bare).size();
}

/// The file that is asked.
struct Asked {
    sites::SiteStore& store;
    const QString& path;
    bool good = true;
};

/// `action` with ever another number against its own statements, and against what a user waits.
void compare(const char* what, Asked& asked, const std::function<void(int)>& action) {
    bench::BareLibrary library(asked.path, kSafely);
    std::vector<double> own;
    std::vector<double> bare;
    for (int k = 0; k < kRuns; ++k) {
        own.push_back(bench::milliseconds([&] { action(k); }));
        bench::Recorder recorder(asked.store.connection());
        action(k);
        bare.push_back(bench::milliseconds(
            [&] { asked.good = library.run(recorder.statements) && asked.good; }));
    }
    const double took = least(own);
    const double usual = bench::median(own);
    std::printf("%-36s %8.3f ms, its statements alone %8.3f ms\n", what, took, least(bare));
    bench::print_figure(what, took / least(bare), kMostTimesTheLibrary,
                        "the same statements, bare sqlite3");
    asked.good = asked.good && usual <= kMostMilliseconds;
}

/// What is typed is answered without the file; the library is asked what comes nearest.
void compare_search(Asked& asked) {
    std::optional<sites::SiteSearch> search;
    const double first = bench::milliseconds([&] { search.emplace(asked.store); });
    asked.good = asked.good && first <= kMostMilliseconds;
    std::vector<double> own;
    std::vector<double> bare;
    bench::BareLibrary library(asked.path, kSafely);
    const QString typed = QStringLiteral("garibaldi 17");
    for (int k = 0; k < kRuns; ++k) {
        const QString so_far = typed.left(1 + k % static_cast<int>(typed.size()));
        std::size_t found = 0;
        own.push_back(bench::milliseconds([&] { found = search->find(so_far).size(); }));
        asked.good = asked.good && found > 0;
        std::string condition;
        for (const char* column : {"name", "address", "customer", "remarks"})
            condition += std::string(condition.empty() ? "" : " OR ") + column + " LIKE '%" +
                         so_far.toStdString() + "%'";
        bare.push_back(bench::milliseconds(
            [&] { library.run({"SELECT uuid FROM sites WHERE " + condition}); }));
    }
    std::printf("%-36s %8.3f ms (the first %.1f), LIKE %8.3f ms\n", "search as typed", least(own),
                first, least(bare));
    bench::print_figure("search as typed", least(own) / least(bare), kMostTimesTheLibrary,
                        "LIKE on the sites alone, bare sqlite3");
}

bool measure_questions(sites::SiteStore& store, const QString& path, const Filled& filled) {
    Asked asked{store, path};
    compare("list 2,000 sites", asked, [&](int) {
        if (store.site_lines().size() != kSites) std::abort();
    });
    compare("visits that failed", asked,
            [&](int) { asked.good = asked.good && !store.failed_visits().empty(); });
    compare_search(asked);
    const std::vector<sites::Visit>& visits = filled.of_first;
    compare("read two visits", asked, [&](int k) {
        const auto place = static_cast<std::size_t>(k);
        for (const std::size_t one : {place, place + 1})
            if (store.measurements(visits[one].id).size() != kRows) std::abort();
    });
    compare("compare two visits", asked, [&](int k) {
        const auto place = static_cast<std::size_t>(k);
        const auto compared = sites::compare_visits(store.measurements(visits[place].id),
                                                    store.measurements(visits[place + 1].id));
        if (compared.size() != kPrograms) std::abort();
    });
    compare("chart of a program over 100 visits", asked, [&](int k) {
        const measurement::SeriesKey key = measurement::series_key(measured(0, k % kPrograms));
        const std::size_t rows = store.over_visits(filled.sites[0].id, key).size();
        if (rows != visits.size() * kRows / kPrograms) std::abort();
    });
    return asked.good;
}

/// Seconds of the quickest measurement there is, the level alone, at the pace of the line.
double cycle_time(const QString& folder) {
    const auto answer = [](const QByteArray& command) {
        if (command == "LEVANL?") return command + "\r  58.3\rOK\r";
        return command + "\rOK\r";
    };
    bench::PacedMeter meter(answer, [](const QByteArray&) { return 2ms; });
    link::RealPort port;
    bench::EventLoopView view;
    const auto begin = std::chrono::steady_clock::now();
    link::RealClock clock([=] { return 10h + (std::chrono::steady_clock::now() - begin); });
    link::Link line(port, clock, view);
    port.select(meter.device());
    line.port_connected = true;
    db::DatabaseError error{};
    const QString path = folder + u'/' + QLatin1String(db::kDatabaseFile);
    db::Database::create(path, error);
    const auto database = db::Database::open(path, error);
    ProgramState state;
    realtime::RealtimeRules rules(line, state, *database);
    rules.modes.analogmode();
    rules.panel.fsat = QStringLiteral("1000.0");
    rules.tick_measures(realtime::kAnalogMode);
    std::vector<double> took;
    for (int k = 0; k < kCycles; ++k)
        took.push_back(bench::milliseconds([&] { rules.measure_once(); }) / 1e3);
    return rules.cycle.rows() == kCycles ? bench::median(took) : 0;
}

/// Seconds to store a row on the disk that one works on.
double store_time(const QString& folder) {
    sites::StoreError error;
    const auto store =
        sites::SiteStore::open(folder + u'/' + QLatin1String(sites::kSitesFile), error);
    if (!store) return 0;
    sites::VisitRecorder recorder(*store);
    recorder.begin(QStringLiteral("Sole"), {}, QDateTime::currentDateTime());
    std::vector<double> took;
    for (int k = 0; k < kStores; ++k) {
        measurement::Measurement one = measured(0, k);
        one.instant = 1.7e9 + k;
        took.push_back(bench::milliseconds([&] { recorder.take(one, 0); }) / 1e3);
    }
    return recorder.stored() == kStores ? bench::median(took) : 0;
}

bool measure_storing() {
    const QTemporaryDir folder(QStringLiteral("./m47-bench-XXXXXX"));
    const double cycle = cycle_time(folder.path());
    const double store = store_time(folder.path());
    if (cycle == 0 || store == 0) return false;
    std::printf("a measurement of the level takes %.0f ms, storing its row %.2f ms\n", cycle * 1e3,
                store * 1e3);
    bench::print_figure("a measurement that is stored in a visit", (cycle + store) / cycle,
                        kMostOfTheCycle, "a measurement of the level alone");
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder(bench::folder_template());
    const QString path = folder.filePath(QString::fromLatin1(sites::kSitesFile));
    sites::StoreError error;
    auto store = sites::SiteStore::open(path, error);
    if (!store) return 1;
    const Filled filled = fill(*store);
    const double rows = static_cast<double>(kVisits) * kRows;
    const auto size = static_cast<double>(QFileInfo(path).size());
    const auto bare = static_cast<double>(bare_size(path, folder.filePath("bare.sqlite")));
    std::printf("%.1f bytes a measurement, without an index %.1f\n", size / rows, bare / rows);
    bench::print_figure("bytes a measurement of 2,000,000", size / bare, kMostOfTheSize,
                        "the same rows, no index, bare sqlite3");
    store.reset();
    const double opened = bench::milliseconds([&] { store = sites::SiteStore::open(path, error); });
    std::printf("opened and its lists checked in %.1f ms\n", opened);
    bool good = store && opened <= kMostMilliseconds && bare > 0;
    good = measure_questions(*store, path, filled) && good;
    good = measure_storing() && good;
    return good ? 0 : 1;
}
