// SPDX-License-Identifier: GPL-3.0-or-later
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>

#include "db_support.h"
#include "engine.h"
#include "open_sites.h"
#include "sample_year.h"
#include "site_list.h"
#include "site_schema.h"
#include "site_search.h"
#include "sites_support.h"
#include "visit_series.h"
#include "worse_search.h"

namespace m47::sites {
namespace {

bool alike(const measurement::Measurement& one, const measurement::Measurement& other) {
    const auto same_reading = [](const measurement::Reading& a, const measurement::Reading& b) {
        return a.mark == b.mark && (a.value == b.value || (!a.measured() && !b.measured()));
    };
    return one.instant == other.instant && one.program == other.program && one.mode == other.mode &&
           one.frequency == other.frequency && one.oscillator == other.oscillator &&
           std::ranges::equal(one.readings, other.readings, same_reading) &&
           one.unit == other.unit && one.limits == other.limits && one.verdict == other.verdict;
}

bool alike(const VisitMeasurement& one, const VisitMeasurement& other) {
    return one.id == other.id && one.visit == other.visit && one.instant == other.instant &&
           alike(one.measurement, other.measurement);
}

}  // namespace

/// What is kept of sites comes back as it was.
class StoreTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<SiteStore> store_;

    QString path() const { return sites_in(folder_->path()); }
    void reopen() {
        store_.reset();
        store_ = opened_sites(folder_->path());
    }
    QString counted(const QString& table) {
        return db::run_sql(path(), {QStringLiteral("SELECT count(*) FROM %1").arg(table)}).first();
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
        store_ = opened_sites(folder_->path());
    }
    void cleanup() { store_.reset(); }

    void the_file_is_set_up_as_it_is_meant_to_be() {
        const auto answer = [this](const char* asked) {
            db::Query query(store_->connection(), QString::fromLatin1(asked));
            return query.next() ? query.value(0).toString() : QString();
        };
        QCOMPARE(answer("PRAGMA journal_mode"), QStringLiteral("delete"));
        QCOMPARE(answer("PRAGMA synchronous"), QStringLiteral("2"));
        QCOMPARE(answer("PRAGMA foreign_keys"), QStringLiteral("1"));
        QCOMPARE(answer("PRAGMA busy_timeout"), QStringLiteral("3000"));
        QCOMPARE(answer("PRAGMA user_version"), QString::number(current_version()));
        QCOMPARE(answer("PRAGMA application_id"), QString::number(kApplicationId));
        QCOMPARE(db::files_in(folder_->path()).keys(),
                 QStringList{QString::fromLatin1(kSitesFile)});
    }

    void everything_comes_back_as_it_was() {
        const Site site = a_site(QStringLiteral("Condominio Sole"));
        Visit visit = a_visit(site, 3);
        std::vector<VisitMeasurement> rows{a_row(visit, 5, QStringLiteral("007"), 13.1F),
                                           a_row(visit, 9, QStringLiteral("008"), 0.1F)};
        // A row of a log says little.
        rows.push_back({.id = QUuid::createUuid(), .visit = visit.id, .instant = {1e9, -3600}});
        rows.back().measurement.instant = rows.back().instant.wall();
        store_->store(site);
        store_->store(visit);
        for (const VisitMeasurement& row : rows) store_->store(row);
        visit.ended = Instant{visit.begun.utc + 60.5, 3600};
        store_->store(visit);
        reopen();
        QCOMPARE(store_->sites(), std::vector{site});
        QCOMPARE(store_->visits(site.id), std::vector{visit});
        QCOMPARE(store_->visit(visit.id), std::optional(visit));
        const auto found = store_->measurements(visit.id);
        QCOMPARE(found.size(), 3U);
        QVERIFY(alike(found[0], rows[2]));
        QVERIFY(alike(found[1], rows[0]));
        QVERIFY(alike(found[2], rows[1]));
    }

    void a_number_is_kept_as_a_number() {
        const Site site = a_site(QStringLiteral("A"));
        const Visit visit = a_visit(site, 0);
        store_->store(site);
        store_->store(visit);
        store_->store(a_row(visit, 1, QStringLiteral("001"), 13.1F));
        QCOMPARE(db::run_sql(path(), {QStringLiteral(
                                         "SELECT group_concat(typeof(level) || typeof(utc) || "
                                         "typeof(mer) || ' ' || level || ' ' || mer || ' ' || "
                                         "frequency || ' ' || length(uuid)) FROM measurements")}),
                 QStringList{QStringLiteral("realrealreal 58.3 13.1 11778.2 16")});
    }

    void what_has_the_same_id_is_replaced() {
        Site site = a_site(QStringLiteral("A"));
        Visit visit = a_visit(site, 0);
        VisitMeasurement row = a_row(visit, 1, QStringLiteral("001"), 13.1F);
        for (int time = 0; time < 2; ++time) {
            store_->store(site);
            store_->store(visit);
            store_->store(row);
            site.name = QStringLiteral("B");
            visit.remarks = QStringLiteral("anders");
            row.measurement.reading(measurement::Quantity::mer).value = 9;
        }
        store_->store(visit);
        store_->store(site);
        QCOMPARE(store_->sites(), std::vector{site});
        QCOMPARE(store_->visits(site.id), std::vector{visit});
        QCOMPARE(store_->measurements(visit.id).size(), 1U);
        QCOMPARE(
            store_->measurements(visit.id)[0].measurement.reading(measurement::Quantity::mer).value,
            9.0F);
    }

    void sites_come_by_name_and_visits_the_latest_first() {
        const Site c = a_site(QStringLiteral("Àlbero"));
        const Site b = a_site(QStringLiteral("beta"));
        const Site a = a_site(QStringLiteral("Alfa"));
        for (const Site& site : {c, b, a}) store_->store(site);
        QCOMPARE(store_->sites(), (std::vector{a, b, c}));
        const Visit early = a_visit(a, 1);
        const Visit late = a_visit(a, 2);
        const Visit elsewhere = a_visit(b, 3);
        for (const Visit& visit : {early, elsewhere, late}) store_->store(visit);
        QCOMPARE(store_->visits(a.id), (std::vector{late, early}));
        QVERIFY(!store_->visit(QUuid::createUuid()));
    }

    void what_is_removed_takes_along_what_hangs_on_it() {
        const Site site = a_site(QStringLiteral("A"));
        const Site other = a_site(QStringLiteral("B"));
        const Visit one = a_visit(site, 0);
        const Visit two = a_visit(site, 1);
        const Visit third = a_visit(other, 1);
        store_->store(site);
        store_->store(other);
        for (const Visit& visit : {one, two, third}) {
            store_->store(visit);
            store_->store(a_row(visit, 1, QStringLiteral("001"), 13));
        }
        store_->remove_visit(one.id);
        QCOMPARE(store_->visits(site.id), std::vector{two});
        QCOMPARE(counted(QStringLiteral("measurements")), QStringLiteral("2"));
        store_->remove_site(site.id);
        QCOMPARE(store_->sites(), std::vector{other});
        QCOMPARE(counted(QStringLiteral("visits")), QStringLiteral("1"));
        QCOMPARE(store_->measurements(third.id).size(), 1U);
    }

    void what_hangs_on_nothing_is_refused() {
        const Site site = a_site(QStringLiteral("A"));
        const Visit visit = a_visit(site, 0);
        M47_VERIFY_FAULT(store_->store(visit), "constraint");
        store_->store(site);
        M47_VERIFY_FAULT(store_->store(a_row(visit, 1, QStringLiteral("1"), 1)), "constraint");
        store_->store(visit);
        store_->store(a_row(visit, 1, QStringLiteral("1"), 1));
    }

    void a_number_of_a_removed_visit_is_not_given_again() {
        const Site site = a_site(QStringLiteral("A"));
        const Visit gone = a_visit(site, 0);
        store_->store(site);
        store_->store(gone);
        store_->remove_visit(gone.id);
        store_->store(a_visit(site, 1));
        QCOMPARE(db::run_sql(path(), {QStringLiteral("SELECT id FROM visits")}),
                 QStringList{QStringLiteral("2")});
    }

    void all_of_it_or_nothing() {
        const Site site = a_site(QStringLiteral("A"));
        const Visit visit = a_visit(site, 0);
        M47_VERIFY_FAULT(store_->together([&] {
            store_->store(site);
            store_->together([&] { store_->store(visit); });
            store_->store(a_row(visit, 1, QStringLiteral("009"), 1));
            throw Fault("enough");
        }),
                         "enough");
        QVERIFY(store_->sites().empty());
        QCOMPARE(counted(QStringLiteral("programs")), QStringLiteral("0"));
        // The places of what was undone are forgotten.
        store_->together([&] {
            store_->store(site);
            store_->store(visit);
            store_->store(a_row(visit, 1, QStringLiteral("009"), 1));
        });
        QCOMPARE(store_->measurements(visit.id)[0].measurement.program.number,
                 QStringLiteral("009"));
        QCOMPARE(store_->measurements(visit.id)[0].measurement.limits[0],
                 std::optional(measurement::Limits{45, 75}));
    }

    void a_list_shows_how_many_visits_and_which_failed() {
        const Site a = a_site(QStringLiteral("alfa"));
        const Site b = a_site(QStringLiteral("Beta"));
        store_->store(b);
        store_->store(a);
        const Visit late = a_visit(a, 5);
        const Visit early = a_visit(a, 1);
        for (const Visit& visit : {late, early}) {
            store_->store(visit);
            VisitMeasurement row = a_row(visit, 1, QStringLiteral("1"), 9);
            if (visit.id == early.id) row.measurement.verdict = measurement::Verdict::fail;
            store_->store(row);
            row.id = QUuid::createUuid();
            store_->store(row);
        }
        const std::vector<SiteLine> lines = store_->site_lines();
        QCOMPARE(lines.size(), 2U);
        QCOMPARE(lines[0].site, a);
        QCOMPARE(lines[0].visits, 2);
        QCOMPARE(lines[0].last, std::optional(late.begun));
        QCOMPARE(lines[1].site, b);
        QCOMPARE(lines[1].visits, 0);
        QVERIFY(!lines[1].last);
        QCOMPARE(store_->failed_visits(), std::vector{early.id});
    }

    void a_program_is_found_over_the_visits_of_its_site() {
        const Site site = a_site(QStringLiteral("A"));
        const Site other = a_site(QStringLiteral("B"));
        store_->store(site);
        store_->store(other);
        std::vector<VisitMeasurement> seven;
        std::vector<VisitMeasurement> tuned;
        for (const Visit& visit : {a_visit(site, 4), a_visit(site, 2), a_visit(other, 3)}) {
            store_->store(visit);
            VisitMeasurement row = a_row(visit, 1, QStringLiteral("007"), 9);
            VisitMeasurement free = a_row(visit, 2, QString(), 9);
            free.measurement.program = {};
            for (const VisitMeasurement& one : {row, free, a_row(visit, 3, QStringLiteral("8"), 9)})
                store_->store(one);
            if (visit.site != site.id) continue;
            seven.insert(seven.begin(), row);
            tuned.insert(tuned.begin(), free);
        }
        const auto verify = [&](const std::vector<VisitMeasurement>& wanted) {
            const auto found =
                store_->over_visits(site.id, measurement::series_key(wanted[0].measurement));
            return std::ranges::equal(
                found, wanted, [](const auto& one, const auto& two) { return alike(one, two); });
        };
        QVERIFY(verify(seven));
        QVERIFY(verify(tuned));
        measurement::SeriesKey unknown = measurement::series_key(tuned[0].measurement);
        unknown.oscillator.reset();
        QVERIFY(store_->over_visits(site.id, unknown).empty());
    }

    void sites_are_found_as_one_types() {
        Site sun = a_site(QStringLiteral("Condominio Sole"));
        sun.remarks.clear();
        Site moon = a_site(QStringLiteral("ÀNCORA Luna"));
        moon.address = QStringLiteral("Piazza 3");
        moon.customer.clear();
        store_->store(sun);
        store_->store(moon);
        Visit visit = a_visit(moon, 1);
        visit.technician = QStringLiteral("Verdi");
        store_->store(visit);
        const SiteSearch search(*store_);
        const std::vector<QUuid> both{sun.id, moon.id};
        QCOMPARE(search.find(QString()), both);
        QCOMPARE(search.find(QStringLiteral("l")), both);
        QCOMPARE(search.find(QStringLiteral("sol")), std::vector{sun.id});
        QCOMPARE(search.find(QStringLiteral("àncora")), std::vector{moon.id});
        QCOMPARE(search.find(QStringLiteral("CITTÀ roma")), std::vector{sun.id});
        QCOMPARE(search.find(QStringLiteral(" verdi  temporale ")), std::vector{moon.id});
        QVERIFY(search.find(QStringLiteral("sole verdi")).empty());
        QVERIFY(search.find(QStringLiteral("solevia")).empty());
    }

    void a_list_leaves_what_is_wanted() {
        fill_year(*store_);
        SiteList list(*store_);
        const auto found = [&](const SitesWanted& wanted) {
            QStringList names;
            for (const SiteLine& line : list.sites(wanted))
                names += QStringLiteral("%1 %2").arg(line.site.name).arg(line.visits);
            return names;
        };
        QCOMPARE(found({}).size(), 4);
        QCOMPARE(found({.typed = QStringLiteral("bianchi")}),
                 QStringList({"Condominio Rossi 5", "Villa Bianchi 0"}));
        using Visits = SitesWanted::Visits;
        QCOMPARE(found({.visits = Visits::failed}), QStringList({"Condominio Rossi 1"}));
        QCOMPARE(found({.typed = QStringLiteral("via roma"), .visits = Visits::passed}),
                 QStringList({"Condominio Rossi 4"}));
        const QUuid rossi = list.sites({}).front().site.id;
        const std::vector<Visit> visits = list.visits(rossi, {});
        QVERIFY(list.has_failed(visits.front().id));
        // The first instant is wanted, the one behind the last is not; both on the wall clock.
        const double begun = visits[1].begun.wall();
        QCOMPARE(list.visits(rossi, {.from = begun}).size(), 2U);
        QCOMPARE(list.visits(rossi, {.until = begun}).size(), 3U);
        QCOMPARE(list.visits(rossi, {.from = begun, .until = begun + 1}).size(), 1U);
        QCOMPARE(found({.from = begun, .until = begun + 1}),
                 QStringList({"Condominio Rossi 1", "Hotel Miramare 1"}));
    }

    void what_got_worse_is_looked_for_site_by_site() {
        fill_year(*store_);
        WorseSearch search(*store_, 2);
        std::size_t steps = 0;
        for (; !search.done(); ++steps) search.step();
        QCOMPARE(steps, std::size_t{4});
        const std::vector<GotWorse> all = what_got_worse(histories_of(*store_), 2);
        const std::vector<GotWorse> found = search.found();
        QCOMPARE(found.size(), 3U);
        QVERIFY(std::ranges::equal(found, all, [](const GotWorse& one, const GotWorse& other) {
            return one.site == other.site && one.program.key == other.program.key;
        }));
    }

    void a_series_over_visits_has_the_last_of_each_in_one_unit() {
        const Site site = a_site(QStringLiteral("A"));
        std::vector<VisitMeasurement> rows;
        for (const int hours : {0, 24}) {
            const Visit visit = a_visit(site, hours);
            for (const int second : {1, 2})
                rows.push_back(a_row(visit, second, QStringLiteral("001"),
                                     10.0F + static_cast<float>(second)));
        }
        rows[3].measurement.unit = kDbuv;
        const std::vector<VisitMeasurement> series = visit_series(rows);
        QCOMPARE(series.size(), 2U);
        QCOMPARE(series[0].id, rows[1].id);
        QCOMPARE(series[1].id, rows[3].id);
        QCOMPARE(series[0].measurement.unit, std::optional(kDbuv));
        // 58.3 dBm at 75 ohm.
        const auto level = series[0].measurement.reading(measurement::Quantity::level).value;
        QCOMPARE(QString::number(level, 'f', 1), QStringLiteral("167.1"));
        QVERIFY(visit_series({}).empty());
        // A level without a unit has no place on that axis, its MER has.
        rows[1].measurement.unit.reset();
        const std::vector<VisitMeasurement> mixed = visit_series(rows);
        QCOMPARE(mixed.size(), 2U);
        QVERIFY(!mixed[0].measurement.reading(measurement::Quantity::level).measured());
        QVERIFY(mixed[0].measurement.reading(measurement::Quantity::mer).measured());
        // Under its number it was another transponder then.
        rows[1].measurement.frequency = *rows[3].measurement.frequency + 40;
        QCOMPARE(visit_series(rows).size(), 1U);
    }

    void one_store_is_shared_and_opened_when_it_is_needed() {
        store_.reset();
        const QTemporaryDir elsewhere;
        const QString file = sites_in(elsewhere.path());
        OpenSites sites(file);
        QVERIFY(!sites.look());
        QVERIFY(!QFile::exists(file));
        std::shared_ptr<SiteStore> one = sites.open();
        QVERIFY(QFile::exists(file));
        QCOMPARE(sites.look(), one);
        QVERIFY(!sites.let_go());
        QVERIFY(sites.is_open());
        QVERIFY(!sites.was_replaced());
        QVERIFY(QFile::rename(file, file + QStringLiteral(".away")));
        QVERIFY(sites.was_replaced());
        QVERIFY(QFile::copy(file + QStringLiteral(".away"), file));
        QVERIFY(sites.was_replaced());
        one.reset();
        QVERIFY(sites.let_go());
        QVERIFY(!sites.is_open());
    }

    void an_older_file_is_brought_up_to_date_whole_or_not_at_all() {
        static constexpr const char* kMore[] = {"ALTER TABLE sites ADD COLUMN mast TEXT",
                                                "CREATE TABLE masts (id INTEGER PRIMARY KEY)"};
        static constexpr const char* kBroken[] = {"CREATE TABLE roofs (id)", "CREATE nonsense"};
        store_->store(a_site(QStringLiteral("A")));
        const std::vector<Migration> broken{migrations()[0], kMore, kBroken};
        M47_VERIFY_FAULT(bring_up_to_date(store_->connection(), broken), "syntax");
        const QString tables =
            QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name IN ('masts', 'roofs')");
        QCOMPARE(db::run_sql(path(), {tables}), QStringList{QStringLiteral("0")});
        bring_up_to_date(store_->connection(), std::span(broken).first(2));
        bring_up_to_date(store_->connection(), std::span(broken).first(2));
        QCOMPARE(db::run_sql(path(), {tables}), QStringList{QStringLiteral("1")});
        QCOMPARE(db::run_sql(path(), {QStringLiteral("PRAGMA user_version")}),
                 QStringList{QStringLiteral("2")});
        QCOMPARE(store_->sites().size(), 1U);
    }
};

}  // namespace m47::sites

M47_DB_TEST_MAIN(m47::sites::StoreTest)
#include "store_test.moc"
