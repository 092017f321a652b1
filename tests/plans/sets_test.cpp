// SPDX-License-Identifier: GPL-3.0-or-later
// Plans and programs in the database file: every change as a whole or not at all.
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "db_support.h"
#include "fault.h"
#include "numbers.h"
#include "plan_file.h"
#include "plan_sets.h"
#include "statement_fault.h"

namespace m47 {

/// Their frequencies stay within the meter's range.
constexpr int kInterleavings = 1000;

class SetsTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<PlanSets> sets_;

    QStringList sql(const QString& statement) {
        return run_sql(database_in(folder_->path()), {statement});
    }
    QStringList numbers() {
        return sql(QStringLiteral("SELECT coalesce(pg_num, '-') || ' ' || coalesce(logger_pos, "
                                  "'-') FROM programmi WHERE nome = '%1' ORDER BY rowid")
                       .arg(sets_->plan()));
    }
    /// No statement may change the file until `off`.
    void lock_file(bool on) {
        QSqlQuery(QStringLiteral("PRAGMA query_only = %1").arg(on), database_->connection());
    }

    /// As another program that has the file open and waits for nobody. False where it is locked.
    bool elsewhere(const QStringList& statements) {
        bool done = true;
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "elsewhere");
            other.setDatabaseName(database_in(folder_->path()));
            other.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
            done = other.open();
            for (const QString& statement : statements)
                done = QSqlQuery(other).exec(statement) && done;
        }
        QSqlDatabase::removeDatabase("elsewhere");
        return done;
    }
    /// Does `change` with `statements` done by another program right before its 1st, 2nd, … call of
    /// the engine, each time in a new file with two plans of two programs; then `look`.
    void with_another_program_at_each_call(const QStringList& statements,
                                           const std::function<void()>& change,
                                           const std::function<void()>& look) {
        int came_in = 0;
        for (int nth = 1, calls = nth; nth <= calls; ++nth) {
            cleanup();
            init();
            make_two_plans();
            calls = 0;
            set_statement_fault([&]() -> std::optional<QSqlError> {
                if (++calls == nth && elsewhere(statements)) ++came_in;
                return std::nullopt;
            });
            try {
                change();
            } catch (const Fault&) {
                // Told: nothing was changed then.
            }
            set_statement_fault({});
            look();
            if (QTest::currentTestFailed()) return qWarning("before call %d", nth);
        }
        QVERIFY(came_in > 0);
    }
    void make_two_plans() {
        for (const char* plan : {"A", "B"}) {
            sets_->add_new(QString::fromLatin1(plan));
            QCOMPARE(store(tuned("1"), true), Clash::none);
            QCOMPARE(store(tuned("2"), false), Clash::none);
        }
        sql(QStringLiteral("DELETE FROM gruppo WHERE nome = 'PLAN 1'"));
        sql(QStringLiteral("DELETE FROM programmi WHERE nome = 'PLAN 1'"));
        sql(QStringLiteral("DELETE FROM configurazione WHERE nome = 'PLAN 1'"));
        sets_->refresh();
        while (sets_->plan() != QStringLiteral("A")) sets_->previous_plan();
    }
    /// As this program does it: the last plan stays.
    static QStringList deleting(const char* plan) {
        QStringList statements;
        for (const char* table : {"programmi", "configurazione", "gruppo"})
            statements += QStringLiteral(
                              "DELETE FROM %1 WHERE nome = '%2' AND (SELECT count(*) FROM gruppo) "
                              "> 1")
                              .arg(QLatin1String(table), QLatin1String(plan));
        return statements;
    }

    static ProgramRecord tuned(const char* number, const char* frequency = "1000") {
        ProgramRecord record = import_defaults(0);
        record.pg_num = QString::fromLatin1(number);
        record.frequenza = QString::fromLatin1(frequency);
        return record;
    }
    Clash store(ProgramRecord record, bool over) {
        QString none;
        return sets_->store_record(record, none, 0, over);
    }

  private Q_SLOTS:
    void init() {
        // In memory where there is such a place: a test commits often.
        const bool memory = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
        folder_ = std::make_unique<QTemporaryDir>(
            (memory ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
            QStringLiteral("/m47-plans-XXXXXX"));
        database_ = made_in(folder_->path());
        sets_ = std::make_unique<PlanSets>(*database_);
    }
    void cleanup() {
        sets_.reset();
        database_.reset();
    }

    void a_new_plan_has_one_empty_program() {
        sets_->add_new(QStringLiteral("B"));
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        QVERIFY(is_blank(sets_->program()));
        QCOMPARE(sets_->oscillators(), Oscillators());
        QCOMPARE(numbers(), QStringList{"- -"});
        QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM configurazione WHERE nome = 'B'")),
                 QStringList{"1"});
        QVERIFY(!sets_->next_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        QVERIFY(sets_->previous_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
        QVERIFY(!sets_->previous_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
    }

    void an_existing_name_makes_no_second_plan() {
        sets_->add_new(QStringLiteral("B"));
        sets_->first_plan();
        sets_->add_new(QStringLiteral("B"));
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM gruppo")), QStringList{"2"});
        QCOMPARE(numbers().size(), 1);
    }

    void the_last_plan_stays() {
        QVERIFY(!sets_->can_delete_plan());
        sets_->del_old();
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
        QCOMPARE(numbers().size(), 1);
    }

    void a_plan_goes_with_all_its_rows() {
        sets_->add_new(QStringLiteral("B"));
        QCOMPARE(store(tuned("1"), false), Clash::none);
        sets_->del_old();
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
        for (const char* table : {"gruppo", "configurazione", "programmi"})
            QCOMPARE(sql(QStringLiteral("SELECT nome FROM %1").arg(QLatin1String(table))),
                     QStringList{"PLAN 1"});
    }

    void quotes_in_a_name_are_just_characters() {
        sets_->add_new(QStringLiteral("A\"' OR 1"));
        QCOMPARE(store(tuned("1"), true), Clash::none);
        sets_->del_old();
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
        QCOMPARE(numbers(), QStringList{"- -"});
    }

    void an_import_spares_what_another_program_has_stored_meanwhile() {
        const std::vector<ImportCandidate> none;
        ImportPreview import = preview_import(none, sets_->programs(), sets_->oscillators(), 0);
        import.replaces_blank = true;
        PlanSets other(*database_);
        QString oscillator;
        ProgramRecord theirs = tuned("5");
        QCOMPARE(other.store_record(theirs, oscillator, 0, true), Clash::none);
        M47_VERIFY_FAULT(sets_->apply_import(import), "meanwhile");
        QCOMPARE(numbers(), QStringList{"005 "});
    }

    void what_was_seen_is_overwritten_and_nothing_else() {
        QCOMPARE(store(tuned("1"), true), Clash::none);
        const StoredProgram seen = sets_->stored();
        PlanSets other(*database_);
        QString oscillator;
        ProgramRecord theirs = tuned("1", "1200");
        QCOMPARE(other.store_record(theirs, oscillator, 0, true), Clash::none);
        ProgramRecord mine = tuned("1", "1300");
        const auto store_mine = [&](const StoredProgram& known) {
            return sets_->store_record(mine, oscillator, 0, true, &known);
        };
        M47_VERIFY_FAULT(store_mine(seen), "changed meanwhile");
        const QString frequency = QStringLiteral("SELECT frequenza FROM programmi");
        QCOMPARE(sql(frequency), QStringList{"1200"});
        QCOMPARE(sets_->program().frequenza, QStringLiteral("1200.0"));
        QCOMPARE(store_mine(sets_->stored()), Clash::none);
        QCOMPARE(sql(frequency), QStringList{"1300"});
    }

    void the_same_in_another_form_is_no_change() {
        ProgramRecord now = tuned("1", "1200.0");
        now.satchbw = QStringLiteral("05");
        const StoredProgram known{tuned("1"), {}};
        ProgramRecord typed = now;
        typed.satchbw = QStringLiteral("5");
        typed.frequenza = QStringLiteral("1200");
        const ChangedMeanwhile change({now, {}}, typed, QString(), true);
        need_unchanged(known, change);
        QVERIFY(changed_fields(change).isEmpty());
        typed.satchbw = QStringLiteral("6");
        const ChangedMeanwhile other({now, {}}, typed, QString(), true);
        M47_VERIFY_FAULT(need_unchanged(known, other), "changed meanwhile");
        QCOMPARE(changed_fields(other).size(), 1);
        QCOMPARE(changed_fields(other)[0].typed, QStringLiteral("06"));
    }

    /// Two windows look and store in any order: what neither has seen is never overwritten, and
    /// whoever would have done so is told.
    void two_windows_in_any_order_lose_nothing() {
        QCOMPARE(store(tuned("1"), true), Clash::none);
        const auto elsewhere = opened(database_in(folder_->path()));
        PlanSets other(*elsewhere);
        const std::array<PlanSets*, 2> windows{sets_.get(), &other};
        std::array<StoredProgram, 2> seen{windows[0]->stored(), windows[1]->stored()};
        std::array<int, 2> seen_mhz{1000, 1000};
        int in_file = 1000;
        int told = 0;
        QRandomGenerator random(15);
        for (int step = 1; step <= kInterleavings; ++step) {
            const std::size_t w = random.bounded(2U);
            if (random.bounded(2) == 0) {
                windows[w]->refresh();
                seen[w] = windows[w]->stored();
                seen_mhz[w] = in_file;
                continue;
            }
            ProgramRecord record = tuned("1");
            record.frequenza = QString::number(1000 + step);
            QString oscillator;
            const bool stale = seen_mhz[w] != in_file;
            bool refused = false;
            try {
                QCOMPARE(windows[w]->store_record(record, oscillator, 0, true, &seen[w]),
                         Clash::none);
                in_file = seen_mhz[w] = 1000 + step;
                seen[w] = windows[w]->stored();
            } catch (const ChangedMeanwhile&) {
                refused = true;
                ++told;
            }
            QCOMPARE(refused, stale);
            QCOMPARE(sql("SELECT frequenza FROM programmi"), QStringList(QString::number(in_file)));
        }
        QVERIFY2(told > kInterleavings / 10, qPrintable(QString::number(told)));
    }

    void the_last_plan_stays_whenever_another_program_deletes_the_rest() {
        with_another_program_at_each_call(
            deleting("B"), [this] { sets_->del_old(); },
            [this] {
                QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM gruppo")), QStringList{"1"});
                QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi")), QStringList{"2"});
            });
    }

    void the_last_program_stays_whenever_another_program_deletes_the_rest() {
        with_another_program_at_each_call(
            {QStringLiteral("DELETE FROM programmi WHERE nome = 'A' AND pg_num = '002' AND "
                            "(SELECT count(*) FROM programmi WHERE nome = 'A') > 1")},
            [this] { sets_->delete_program(); },
            [this] {
                QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi WHERE nome = 'A'")),
                         QStringList{"1"});
            });
    }

    void a_copied_program_has_its_own_number_whoever_stores_meanwhile() {
        with_another_program_at_each_call(
            {QStringLiteral(
                "INSERT INTO programmi (nome, pg_num) SELECT 'B', '000' WHERE NOT "
                "EXISTS (SELECT 1 FROM programmi WHERE nome = 'B' AND pg_num = '000')")},
            [this] { QCOMPARE(sets_->copy_program("B"), ImportProblem::none); },
            [this] {
                const QString count = QStringLiteral(
                    "SELECT count(pg_num) - count(DISTINCT pg_num) FROM programmi WHERE nome = "
                    "'B'");
                QCOMPARE(sql(count), QStringList{"0"});
                QCOMPARE(sql("SELECT count(*) > 2 FROM programmi WHERE nome = 'B'"),
                         QStringList{"1"});
            });
    }

    void a_plan_is_made_once_whoever_makes_it_meanwhile_data() {
        QTest::addColumn<bool>("copied");
        QTest::newRow("empty") << false;
        QTest::newRow("copied") << true;
    }
    void a_plan_is_made_once_whoever_makes_it_meanwhile() {
        QFETCH(bool, copied);
        with_another_program_at_each_call(
            {QStringLiteral("INSERT INTO gruppo (nome) SELECT 'C' WHERE NOT EXISTS (SELECT 1 FROM "
                            "gruppo WHERE nome = 'C')")},
            [&] {
                if (copied)
                    sets_->copy_plan("C");
                else
                    sets_->add_new("C");
            },
            [this] {
                QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM gruppo WHERE nome = 'C'")),
                         QStringList{"1"});
            });
    }

    void an_import_spares_oscillators_that_another_program_has_stored_meanwhile() {
        const ImportFile file = parse_import_file("frequenza,oscillator\n11000,9750\n", 0);
        const ImportPreview import =
            preview_import(file.candidates, sets_->programs(), sets_->oscillators(), 0);
        sql(QStringLiteral("UPDATE configurazione SET loc_osc1 = 5150"));
        M47_VERIFY_FAULT(sets_->apply_import(import), "oscillators");
        QCOMPARE(sql(QStringLiteral("SELECT loc_osc1 FROM configurazione")), QStringList{"5150"});
        QCOMPARE(numbers(), QStringList{"- -"});
    }

    void a_new_program_takes_the_next_position() {
        QCOMPARE(store(tuned("5"), true), Clash::none);
        QCOMPARE(store(tuned("6"), false), Clash::none);
        QCOMPARE(store(tuned("7"), false), Clash::none);
        QCOMPARE(numbers(), QStringList({"005 ", "006 01", "007 02"}));
    }

    void behind_the_last_position_there_is_none() {
        ProgramRecord last = tuned("1");
        last.logger_pos = QStringLiteral("41");
        QCOMPARE(store(last, true), Clash::none);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        QCOMPARE(numbers(), QStringList({"001 41", "002 "}));
    }

    void a_number_comes_once_in_a_plan() {
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(store(tuned("1"), false), Clash::number);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        // Over the first, with the number of the second.
        sets_->first_program();
        QCOMPARE(store(tuned("2", "1500"), true), Clash::number);
        QCOMPARE(numbers(), QStringList({"001 ", "002 01"}));
        sets_->add_new(QStringLiteral("B"));
        QCOMPARE(store(tuned("1"), true), Clash::none);
    }

    void a_position_comes_once_in_a_plan_data() {
        QTest::addColumn<QString>("number");
        QTest::newRow("same number") << "001";
        QTest::newRow("a number new to the plan") << "050";
    }
    void a_position_comes_once_in_a_plan() {
        QFETCH(QString, number);
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        sets_->first_program();
        ProgramRecord first = sets_->program();
        first.pg_num = number;
        first.logger_pos = QStringLiteral("01");
        QCOMPARE(store(first, true), Clash::logger_position);
        QCOMPARE(numbers(), QStringList({"001 ", "002 01"}));
    }

    void a_program_keeps_its_own_position_under_a_new_number() {
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        sets_->last_program();
        ProgramRecord program = sets_->program();
        program.pg_num = QStringLiteral("33");
        QCOMPARE(store(program, true), Clash::none);
        QCOMPARE(numbers(), QStringList({"001 ", "033 01"}));
        QCOMPARE(sets_->program().pg_num, QStringLiteral("033"));
    }

    void what_is_stored_is_corrected_and_comes_back() {
        ProgramRecord record = tuned("150", "10000");
        record.loc_osc = false;
        record.loc_osc0 = 2;
        record.qpsk_symbolrate = QStringLiteral(" 28000 ");
        record.chber_min = QStringLiteral("-1");
        record.monitor_state = true;
        QString oscillator = QStringLiteral("9750");
        QCOMPARE(sets_->store_record(record, oscillator, 0, true), Clash::none);
        QCOMPARE(record.frequenza, QStringLiteral("10670"));
        sets_->crea_records(QStringLiteral(" plan 1 "));
        ProgramRecord expected = record;
        expected.qpsk_symbolrate = QStringLiteral("28000");
        QCOMPARE(sets_->program(), expected);
        QCOMPARE(sets_->oscillators()[2], QStringLiteral("9750"));
        QCOMPARE(sets_->oscillators()[0], QString());
        QCOMPARE(sql(QStringLiteral("SELECT typeof(frequenza) || typeof(satchbw) || loc_osc || "
                                    "chber_min FROM programmi")),
                 QStringList{"realreal01E-8"});
    }

    void without_an_oscillator_frequency_and_oscillator_stay_empty() {
        ProgramRecord record = sets_->program();
        QString none;
        QCOMPARE(sets_->store_record(record, none, 0, true), Clash::none);
        QCOMPARE(sql(QStringLiteral("SELECT frequenza IS NULL FROM programmi")), QStringList{"1"});
        QCOMPARE(sql(QStringLiteral("SELECT loc_osc1 IS NULL FROM configurazione")),
                 QStringList{"1"});
        QCOMPARE(sets_->program().frequenza, QString());
    }

    void the_last_program_stays() {
        sets_->delete_program();
        QCOMPARE(numbers().size(), 1);
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        QVERIFY(sets_->can_delete_program());
        sets_->last_program();
        sets_->delete_program();
        QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
        QVERIFY(!sets_->can_delete_program());
    }

    void programs_are_walked_to_both_ends() {
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        QVERIFY(sets_->next_program());
        QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
        QVERIFY(!sets_->next_program());
        QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
        QVERIFY(sets_->previous_program());
        QVERIFY(!sets_->previous_program());
        QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
    }

    void a_plan_without_programs_is_tolerated() {
        sql(QStringLiteral("DELETE FROM programmi"));
        sets_->crea_records(sets_->plan());
        QVERIFY(is_blank(sets_->program()));
        QVERIFY(!sets_->next_program());
        QVERIFY(!sets_->previous_program());
        QVERIFY(!sets_->can_delete_program());
        M47_VERIFY_FAULT(store(tuned("1"), true), "no current record");
        QCOMPARE(store(tuned("1"), false), Clash::none);
        QCOMPARE(numbers(), QStringList{"001 01"});
    }

    void without_a_plan_nothing_is_written() {
        const ImportPreview import =
            preview_import(parse_import_file("frequenza\n1000\n", 0).candidates, {}, {}, 0);
        for (const char* table : {"gruppo", "programmi", "configurazione"})
            sql(QStringLiteral("DELETE FROM %1").arg(QLatin1String(table)));
        sets_->first_plan();
        QVERIFY(!sets_->has_current_plan());
        M47_VERIFY_FAULT(store(tuned("1"), false), "there is no plan");
        M47_VERIFY_FAULT(store(tuned("1"), true), "there is no plan");
        M47_VERIFY_FAULT(sets_->store_oscloc(0, "9750"), "there is no plan");
        M47_VERIFY_FAULT(sets_->apply_import(import), "there is no plan");
        M47_VERIFY_FAULT(sets_->copy_plan("X"), "there is no plan");
        M47_VERIFY_FAULT(sets_->copy_program("X"), "there is no plan");
        sets_->del_old();
        sets_->delete_program();
        QVERIFY(!sets_->next_plan());
        QVERIFY(!sets_->previous_plan());
        QCOMPARE(sql(QStringLiteral("SELECT nome FROM gruppo UNION ALL SELECT nome FROM programmi "
                                    "UNION ALL SELECT nome FROM configurazione")),
                 QStringList());
        sets_->add_new(QStringLiteral("B"));
        QVERIFY(sets_->has_current_plan());
        QCOMPARE(store(tuned("1"), true), Clash::none);
    }

    void a_plan_that_another_program_has_deleted_takes_nothing() {
        sets_->add_new(QStringLiteral("B"));
        for (const char* table : {"gruppo", "programmi", "configurazione"})
            sql(QStringLiteral("DELETE FROM %1 WHERE nome = 'B'").arg(QLatin1String(table)));
        M47_VERIFY_FAULT(store(tuned("1"), false), "there is no plan");
        QCOMPARE(numbers(), QStringList());
        QVERIFY(sets_->refresh());
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
    }

    void a_plan_without_its_oscillators_gets_them_when_one_is_stored() {
        sql(QStringLiteral("DELETE FROM configurazione"));
        sets_->first_plan();
        sets_->store_oscloc(2, QStringLiteral("9750"));
        QCOMPARE(sets_->oscillators()[2], QStringLiteral("9750"));
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(sql(QStringLiteral("SELECT nome || loc_osc3 FROM configurazione")),
                 QStringList{"PLAN 19750.0"});
    }

    void plans_that_others_add_and_delete_are_seen() {
        sql(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('B')"));
        QVERIFY(sets_->can_delete_plan());
        QVERIFY(sets_->next_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        sql(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('C')"));
        QVERIFY(sets_->next_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("C"));
        QVERIFY(sets_->previous_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        sql(QStringLiteral("DELETE FROM gruppo WHERE nome <> 'B'"));
        QVERIFY(!sets_->can_delete_plan());
        QVERIFY(!sets_->next_plan());
        QVERIFY(!sets_->previous_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
    }

    void what_others_write_into_the_plan_is_read_anew() {
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        sets_->last_program();
        QVERIFY(!sets_->refresh());
        QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
        sql(QStringLiteral("UPDATE programmi SET lev_min = '50' WHERE pg_num = '001'"));
        QVERIFY(!sets_->refresh());
        sql(QStringLiteral("UPDATE programmi SET lev_min = '50' WHERE pg_num = '002'"));
        QVERIFY(sets_->refresh());
        QCOMPARE(sets_->program().lev_min, QStringLiteral("50"));
        sql(QStringLiteral("DELETE FROM programmi WHERE pg_num = '002'"));
        QVERIFY(sets_->refresh());
        QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
    }

    void a_plan_is_one_in_whatever_letters_its_rows_name_it() {
        sql(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('roof '), ('città')"));
        sql(
            QStringLiteral("INSERT INTO programmi (nome, pg_num) VALUES ('Roof', '3'), (' ROOF', "
                           "'4'), ('Città', '5')"));
        sql(QStringLiteral("INSERT INTO configurazione (nome, loc_osc1) VALUES ('roof', 9750)"));
        QVERIFY(sets_->has_plan(QStringLiteral("ROOF")));
        QVERIFY(sets_->next_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("ROOF"));
        QCOMPARE(sets_->programs().size(), std::size_t(2));
        QCOMPARE(sets_->oscillators()[0], QStringLiteral("9750"));
        QCOMPARE(store(tuned("6"), false), Clash::none);
        sets_->last_program();
        QCOMPARE(sets_->program().pg_num, QStringLiteral("006"));
        QVERIFY(sets_->next_plan());
        QCOMPARE(sets_->plan(), QStringLiteral("CITTÀ"));
        QCOMPARE(sets_->program().pg_num, QStringLiteral("5"));
        QVERIFY(sets_->previous_plan());
        sets_->del_old();
        QCOMPARE(sql(QStringLiteral("SELECT nome FROM gruppo UNION ALL SELECT nome FROM programmi "
                                    "UNION ALL SELECT nome FROM configurazione ORDER BY nome")),
                 QStringList({"Città", "PLAN 1", "PLAN 1", "PLAN 1", "città"}));
    }

    void a_file_that_takes_nothing_keeps_everything_as_it_was() {
        QCOMPARE(store(tuned("1"), true), Clash::none);
        QCOMPARE(store(tuned("2"), false), Clash::none);
        sets_->last_program();
        const QByteArray before = content_of(database_in(folder_->path()));
        lock_file(true);
        M47_VERIFY_FAULT(store(tuned("3"), false), "readonly");
        M47_VERIFY_FAULT(store(tuned("2", "1500"), true), "readonly");
        M47_VERIFY_FAULT(sets_->add_new("B"), "readonly");
        M47_VERIFY_FAULT(sets_->copy_plan("B"), "readonly");
        M47_VERIFY_FAULT(sets_->copy_program("B"), "readonly");
        M47_VERIFY_FAULT(
            sets_->apply_import(preview_import(parse_import_file("frequenza\n1000\n", 0).candidates,
                                               sets_->programs(), {}, 0)),
            "readonly");
        lock_file(false);
        QCOMPARE(content_of(database_in(folder_->path())), before);
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
        QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
        QCOMPARE(sets_->program().frequenza, QStringLiteral("1000.0"));
    }

    void a_failure_half_way_leaves_no_half_plan() {
        sets_->add_new(QStringLiteral("B"));
        QCOMPARE(store(tuned("1"), true), Clash::none);
        sql(
            QStringLiteral("CREATE TRIGGER stop BEFORE INSERT ON programmi BEGIN SELECT "
                           "RAISE(ABORT, 'stopped'); END"));
        M47_VERIFY_FAULT(sets_->add_new("C"), "stopped");
        M47_VERIFY_FAULT(sets_->copy_plan("C"), "stopped");
        M47_VERIFY_FAULT(sets_->copy_program("C"), "stopped");
        M47_VERIFY_FAULT(store(tuned("2"), false), "stopped");
        sql(QStringLiteral("DROP TRIGGER stop"));
        sql(
            QStringLiteral("CREATE TRIGGER stop BEFORE DELETE ON programmi BEGIN SELECT "
                           "RAISE(ABORT, 'stopped'); END"));
        M47_VERIFY_FAULT(sets_->del_old(), "stopped");
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
        QCOMPARE(sql(QStringLiteral("SELECT nome FROM gruppo ORDER BY nome")),
                 QStringList({"B", "PLAN 1"}));
        QCOMPARE(sql(QStringLiteral("SELECT nome FROM configurazione ORDER BY nome")),
                 QStringList({"B", "PLAN 1"}));
        QCOMPARE(numbers(), QStringList{"001 "});
    }

    void an_import_replaces_the_empty_program() {
        const ImportFile file =
            parse_import_file("frequenza,oscillator\n11000,9750\n12000,10600\n", 0);
        sets_->apply_import(
            preview_import(file.candidates, sets_->programs(), sets_->oscillators(), 0));
        QCOMPARE(numbers(), QStringList({"000 ", "001 "}));
        QCOMPARE(sets_->program().frequenza, QStringLiteral("11000"));
        QCOMPARE(sets_->oscillators(),
                 Oscillators({QStringLiteral("9750"), QStringLiteral("10600")}));
        QCOMPARE(sql(QStringLiteral("SELECT frequenza FROM programmi")),
                 QStringList({"11000", "12000"}));
    }

    void a_plan_is_copied_field_by_field() {
        sql(QStringLiteral("UPDATE configurazione SET loc_osc3 = 5150, user_sc0 = 'A'"));
        sql(QStringLiteral("UPDATE programmi SET frequenza = 503.25, lnb_volt = NULL"));
        sets_->copy_plan(QStringLiteral("B"));
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM (SELECT loc_osc1, loc_osc3, user_sc0 "
                                    "FROM configurazione UNION SELECT loc_osc1, loc_osc3, "
                                    "user_sc0 FROM configurazione)")),
                 QStringList{"1"});
        QCOMPARE(sql(QStringLiteral("SELECT frequenza || coalesce(lnb_volt, 'none') FROM "
                                    "programmi WHERE nome = 'B'")),
                 QStringList{"503.25none"});
    }

    void a_program_is_copied_with_its_oscillator() {
        ProgramRecord record = tuned("7", "12000");
        record.loc_osc = false;
        record.loc_osc0 = 3;
        record.logger_pos = QStringLiteral("05");
        record.logger_state = true;
        QString oscillator = QStringLiteral("10600");
        QCOMPARE(sets_->store_record(record, oscillator, 0, true), Clash::none);
        // Within the plan: another number, the next position.
        QCOMPARE(sets_->copy_program(QStringLiteral("PLAN 1")), ImportProblem::none);
        QCOMPARE(numbers(), QStringList({"007 05", "000 06"}));
        QCOMPARE(sets_->program().pg_num, QStringLiteral("000"));
        // Into a plan that does not exist yet.
        sets_->first_program();
        QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        QCOMPARE(numbers(), QStringList{"007 05"});
        QCOMPARE(sets_->program(), record);
        QCOMPARE(sets_->oscillators()[3], QStringLiteral("10600"));
    }

    void a_copied_program_keeps_what_no_box_would_take() {
        // Limits in dBuV while another unit is in force, and what other programs have written.
        sql(
            QStringLiteral("UPDATE programmi SET pg_num = '7', frequenza = 503.25, loc_osc = -1, "
                           "lev_min = '45', lev_max = '75', noise_min = '50', satchbw = 55, "
                           "diseqc_cmd = 200, lnb_volt = NULL, qpsk_symbolrate = ''"));
        sets_->first_plan();
        const auto kept = [this](const char* plan) {
            return sql(QStringLiteral("SELECT pg_num || ' ' || frequenza || ' ' || loc_osc || ' ' "
                                      "|| lev_min || ' ' || lev_max || ' ' || noise_min || ' ' || "
                                      "satchbw || ' ' || diseqc_cmd || ' ' || coalesce(lnb_volt, "
                                      "'none') || ' ' || qpsk_symbolrate || coalesce(mer_min, "
                                      "'none') FROM programmi WHERE nome = '%1'")
                           .arg(QLatin1String(plan)));
        };
        QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
        QCOMPARE(kept("B"), QStringList{"7 503.25 -1 45 75 50 55.0 200 none none"});
        QCOMPARE(kept("PLAN 1"), kept("B"));
    }

    void a_program_that_nobody_has_stored_is_copied_empty() {
        QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
        QCOMPARE(sets_->plan(), QStringLiteral("B"));
        QVERIFY(is_blank(sets_->program()));
        QCOMPARE(numbers(), QStringList{"- -"});
    }

    void an_empty_program_makes_room_in_another_plan_and_not_in_its_own() {
        QCOMPARE(sets_->copy_program(QStringLiteral("PLAN 1")), ImportProblem::none);
        QCOMPARE(numbers().size(), 2);
        sets_->add_new(QStringLiteral("B"));
        QCOMPARE(numbers().size(), 1);
        sets_->first_plan();
        QCOMPARE(store(tuned("7"), true), Clash::none);
        QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
        QCOMPARE(numbers(), QStringList{"007 "});
    }

    void the_same_oscillator_again_checks_no_program() {
        const CorrectedBehaviour all{.check_all = true};
        PlanSets checking(*database_, all);
        QStringList told;
        checking.on_checked = [&](const QStringList& numbers) { told += numbers; };
        checking.store_oscloc(0, QStringLiteral("9750"));
        sql(
            QStringLiteral("UPDATE programmi SET pg_num = '001', frequenza = 20000, loc_osc = 0, "
                           "loc_osc0 = 0"));
        checking.store_oscloc(0, QStringLiteral("9750.0"));
        checking.store_oscloc(0, QString());
        QCOMPARE(told, QStringList());
        checking.store_oscloc(0, QStringLiteral("10600"));
        QCOMPARE(told, QStringList{"001"});
    }

    void an_oscillator_alone_is_stored_and_its_programs_are_read_anew() {
        const CorrectedBehaviour all{.check_all = true};
        PlanSets checking(*database_, all);
        ProgramRecord record = tuned("1", "11000");
        record.loc_osc = false;
        QString oscillator = QStringLiteral("9750");
        QCOMPARE(checking.store_record(record, oscillator, 0, true), Clash::none);
        StoredProgram known = checking.stored();
        checking.store_oscloc(record, QStringLiteral("5150"), known);
        QCOMPARE(sql(QStringLiteral("SELECT loc_osc1 FROM configurazione")), QStringList{"5150"});
        const QString stored = sql(QStringLiteral("SELECT frequenza FROM programmi")).constFirst();
        QVERIFY(stored != QStringLiteral("11000.0"));
        QCOMPARE(typed_value(checking.program().frequenza), stored.toDouble());
        QVERIFY(known == checking.stored());
    }

    void a_program_is_not_copied_into_a_full_plan() {
        QCOMPARE(store(tuned("5"), true), Clash::none);
        sets_->add_new(QStringLiteral("B"));
        QCOMPARE(store(tuned("0"), true), Clash::none);
        sql(
            QStringLiteral("WITH RECURSIVE n(k) AS (SELECT 1 UNION ALL SELECT k + 1 FROM n WHERE "
                           "k < 99) INSERT INTO programmi (nome, pg_num) SELECT 'B', k FROM n"));
        sets_->first_plan();
        QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::no_number);
        QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi WHERE nome = 'B'")),
                 QStringList{"100"});
    }

    void a_program_without_room_is_not_copied() {
        ProgramRecord record = tuned("7", "12000");
        record.loc_osc = false;
        QString oscillator = QStringLiteral("10600");
        QCOMPARE(sets_->store_record(record, oscillator, 0, true), Clash::none);
        sets_->add_new(QStringLiteral("B"));
        sql(
            QStringLiteral("UPDATE configurazione SET loc_osc1 = 4000, loc_osc2 = 4001, loc_osc3 "
                           "= 4002, loc_osc4 = 4003 WHERE nome = 'B'"));
        sets_->first_plan();
        QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::no_oscillator);
        QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
        QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi WHERE nome = 'B'")),
                 QStringList{"1"});
    }
};

}  // namespace m47

QTEST_GUILESS_MAIN(m47::SetsTest)
#include "sets_test.moc"
