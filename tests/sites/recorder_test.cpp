// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_recorder.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimeZone>

#include "db_support.h"
#include "engine.h"
#include "sites_support.h"

namespace m47::sites {
namespace {

const QString kPlace = QStringLiteral("Condominio Sole");

/// 10:00 in summer time, `second` seconds on.
QDateTime at(int second) {
    return QDateTime(QDate(2026, 7, 1), QTime(10, 0), Qt::OffsetFromUTC, 7200).addSecs(second);
}

/// What the cycle measures then of `number`.
measurement::Measurement measured(int second, const QString& number = QStringLiteral("001")) {
    measurement::Measurement made = a_row({}, 0, number, 12.5F).measurement;
    made.instant = static_cast<double>(at(second).toSecsSinceEpoch() + 7200);
    return made;
}

}  // namespace

/// The rows of a visit go into the file as they come.
class RecorderTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<SiteStore> store_;
    std::unique_ptr<VisitRecorder> recorder_;
    std::vector<StoreError> told_;

    QString path() const { return sites_in(folder_->path()); }
    void take(int from, int to) {
        for (int second = from; second < to; ++second) recorder_->take(measured(second), 7200);
    }
    int in_file() {
        return db::run_sql(path(), {QStringLiteral("SELECT count(*) FROM measurements")})
            .first()
            .toInt();
    }
    void begin() { recorder_->begin(kPlace, {.technician = QStringLiteral("M. Rossi")}, at(0)); }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
        store_ = opened_sites(folder_->path());
        recorder_ = std::make_unique<VisitRecorder>(*store_);
        told_.clear();
        recorder_->on_fault = [this](const StoreError& error) { told_.push_back(error); };
    }
    void cleanup() {
        recorder_.reset();
        store_.reset();
    }

    void a_visit_has_its_facts_and_its_rows() {
        recorder_->begin(QStringLiteral("  Condominio   Sole "),
                         {.technician = QStringLiteral("M. Rossi"),
                          .instrument = QStringLiteral("V3.0.5"),
                          .logo = QStringLiteral("ROSSI"),
                          .plan = QStringLiteral("ASTRA")},
                         at(0));
        QVERIFY(recorder_->running());
        take(1, 4);
        QCOMPARE(in_file(), 3);
        recorder_->end(at(60));
        QVERIFY(!recorder_->running());
        recorder_->take(measured(70), 7200);
        QCOMPARE(recorder_->stored(), 3);
        QVERIFY(!recorder_->missing_text());
        const std::vector<Site> sites = store_->sites();
        QCOMPARE(sites.size(), 1U);
        QCOMPARE(sites[0].name, kPlace);
        const std::vector<Visit> visits = store_->visits(sites[0].id);
        QCOMPARE(visits, std::vector{*recorder_->visit()});
        QCOMPARE(visits[0].begun, (Instant{1782892800.0, 7200}));
        QCOMPARE(visits[0].ended, std::optional(Instant{1782892860.0, 7200}));
        QCOMPARE(visits[0].logo, QStringLiteral("ROSSI"));
        QCOMPARE(store_->measurements(visits[0].id)[2].instant, (Instant{1782892803.0, 7200}));
        QVERIFY(told_.empty());
    }

    void the_same_name_is_the_same_site() {
        begin();
        recorder_->end(at(1));
        recorder_->begin(QStringLiteral("CONDOMINIO sole"), {}, at(100));
        QCOMPARE(store_->sites().size(), 1U);
        QCOMPARE(store_->visits(store_->sites()[0].id).size(), 2U);
        recorder_->end(at(101));
        recorder_->begin(QStringLiteral("Condominio Sole 2"), {}, at(200));
        QCOMPARE(store_->sites().size(), 2U);
    }

    void the_rows_of_one_second_keep_their_order() {
        begin();
        QStringList numbers;
        for (int k = 0; k < 40; ++k) {
            numbers += QString::number(k);
            recorder_->take(measured(5 + k / 20, numbers.last()), 7200);
        }
        QStringList found;
        for (const VisitMeasurement& row : store_->measurements(recorder_->visit()->id))
            found += row.measurement.program.number;
        QCOMPARE(found, numbers);
    }

    void a_visit_that_was_cut_off_goes_on() {
        begin();
        take(1, 3);
        const QUuid id = recorder_->visit()->id;
        recorder_ = std::make_unique<VisitRecorder>(*store_);
        QVERIFY(!store_->visit(id)->ended);
        recorder_->resume(id);
        take(100, 102);
        QCOMPARE(store_->measurements(id).size(), 4U);
        recorder_->end(at(103));
        QVERIFY(store_->visit(id)->ended);
        store_->remove_visit(id);
        M47_VERIFY_FAULT(recorder_->resume(id), "no longer in the file");
        QVERIFY(!recorder_->running());
    }

    void a_lock_that_ends_loses_no_row_and_is_told_once() {
        begin();
        take(1, 3);
        store_->wait_for_locks(1);
        {
            db::Child child({QStringLiteral("hold-lock"), path(), QStringLiteral("60000")});
            QCOMPARE(child.line(), QStringLiteral("locked"));
            take(3, 10);
            QCOMPARE(recorder_->missing(), 7);
            QVERIFY(recorder_->missing_text());
        }
        QCOMPARE(told_.size(), 1U);
        QCOMPARE(static_cast<int>(told_[0].kind), static_cast<int>(StoreError::Kind::locked));
        take(10, 11);
        QCOMPARE(recorder_->missing(), 0);
        QCOMPARE(in_file(), 10);
        recorder_->end(at(20));
        QVERIFY(store_->visit(recorder_->visit()->id)->ended);
        QCOMPARE(told_.size(), 1U);
    }

    void a_file_taken_away_costs_its_rows_which_are_counted() {
        begin();
        take(1, 3);
        const QString away = path() + QStringLiteral(".away");
        QVERIFY(QFile::rename(path(), away));
        take(3, 8);
        recorder_->end(at(9));
        QVERIFY(!recorder_->running());
        QCOMPARE(told_.size(), 1U);
        QCOMPARE(static_cast<int>(told_[0].kind), static_cast<int>(StoreError::Kind::moved));
        QCOMPARE(recorder_->missing(), 5);
        QCOMPARE(recorder_->missing_text()->in(Texts()),
                 QStringLiteral("Of the visit, 5 of 7 rows are missing in the file of sites "
                                "'sites.sqlite'"));
        QVERIFY(!QFile::exists(path()));
        QVERIFY(QFile::rename(away, path()));
        QCOMPARE(in_file(), 2);
    }

    void a_visit_removed_meanwhile_is_told_as_that_data() {
        QTest::addColumn<QString>("removed");
        QTest::addColumn<bool>("rows_follow");
        QTest::newRow("the site") << QStringLiteral("sites") << true;
        QTest::newRow("the visit") << QStringLiteral("visits") << true;
        QTest::newRow("noticed at the end") << QStringLiteral("visits") << false;
    }
    void a_visit_removed_meanwhile_is_told_as_that() {
        QFETCH(QString, removed);
        QFETCH(bool, rows_follow);
        begin();
        int gone = 0;
        recorder_->on_gone = [&] { ++gone; };
        take(1, 4);
        db::run_sql(path(), {QStringLiteral("PRAGMA foreign_keys = ON"), "DELETE FROM " + removed});
        if (rows_follow) take(4, 7);
        QCOMPARE(gone, rows_follow ? 1 : 0);
        recorder_->end(at(9));
        QCOMPARE(gone, 1);
        QVERIFY(recorder_->gone() && !recorder_->running());
        QVERIFY(told_.empty());
        QCOMPARE(recorder_->stored(), 0);
        QCOMPARE(recorder_->missing(), rows_follow ? 6 : 3);
        QVERIFY(recorder_->missing_text()->in(Texts()).contains("none of its rows is in the file"));
        // No visit without its rows comes back, and nothing is left to go on with.
        QCOMPARE(db::run_sql(path(), {QStringLiteral("SELECT count(*) FROM visits")}).first(),
                 QStringLiteral("0"));
        QVERIFY(VisitClaim::left(path()).empty());
        QVERIFY(QDir(folder_->path()).entryList({"sites.visit-*"}).isEmpty());
        // The next one is as if nothing had been.
        begin();
        take(20, 22);
        recorder_->end(at(30));
        QVERIFY(!recorder_->gone() && !recorder_->missing_text());
        QCOMPARE(in_file(), 2);
    }

    void two_sites_of_one_name_are_not_guessed() {
        begin();
        recorder_->end(at(1));
        Site other = store_->sites().front();
        other.id = QUuid::createUuid();
        other.name = other.name.toUpper();
        store_->store(other);
        QVERIFY_EXCEPTION_THROWN(begin(), Fault);
        QVERIFY(!recorder_->running());
        recorder_->begin(other, {}, at(2));
        take(3, 4);
        recorder_->end(at(5));
        QCOMPARE(store_->visits(other.id).size(), std::size_t{1});
    }

    void a_disk_that_stays_full_gives_up_what_is_too_much() {
        begin();
        take(1, 2);
        db::Query(store_->connection(), QStringLiteral("PRAGMA max_page_count = 1"));
        for (int k = 0; recorder_->missing() == 0 && k < 1000; ++k) take(2 + k, 3 + k);
        const int stored = recorder_->stored();
        const int most = static_cast<int>(VisitRecorder::kMostWaiting);
        take(2000, 2000 + most + 4);
        QCOMPARE(recorder_->stored(), stored);
        QCOMPARE(told_.size(), 1U);
        QCOMPARE(static_cast<int>(told_[0].kind), static_cast<int>(StoreError::Kind::full));
        QCOMPARE(recorder_->missing(), most + 5);
        db::Query(store_->connection(), QStringLiteral("PRAGMA max_page_count = 1000000"));
        recorder_->end(at(50000));
        QCOMPARE(recorder_->missing(), 5);
        QCOMPARE(in_file(), stored + most);
    }

    void a_visit_that_cannot_be_stored_does_not_begin() {
        db::Query(store_->connection(), QStringLiteral("PRAGMA query_only = ON"));
        M47_VERIFY_FAULT(begin(), "readonly");
        QVERIFY(!recorder_->running());
        take(1, 2);
        QCOMPARE(recorder_->stored(), 0);
    }
};

}  // namespace m47::sites

M47_DB_TEST_MAIN(m47::sites::RecorderTest)
#include "recorder_test.moc"
