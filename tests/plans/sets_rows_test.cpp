// SPDX-License-Identifier: GPL-3.0-or-later
// Many programs at once, the table that shows them, and what was stored taken back.
#include "plan_table.h"
#include "sets_test.h"

namespace m47::plans {
namespace {

using Record = programme::ProgramRecord;

/// What a Fault of `deed` says; empty where it was done.
QString refusal_of(const std::function<void()>& deed) {
    try {
        deed();
    } catch (const Fault& fault) {
        return fault.text(Texts());
    }
    return {};
}

}  // namespace

void SetsTest::store_programs(int count) {
    for (int number = 1; number <= count; ++number) {
        const QByteArray text = QByteArray::number(number);
        QCOMPARE(store(tuned(text, QByteArray::number(1000 + number)), number == 1), Clash::none);
    }
    sets_->take_changes();
}

QStringList SetsTest::whole_file() {
    QStringList all;
    for (const char* table : {"gruppo", "configurazione", "programmi"})
        for (const db::Field& field : db::table_named(QLatin1String(table)).fields)
            all +=
                sql(QStringLiteral("SELECT '%1 %2 ' || id || ' ' || quote(%2) FROM %1 ORDER BY id")
                        .arg(QLatin1String(table), QLatin1String(field.name)));
    return all;
}

std::vector<PlanRow> SetsTest::all_rows() {
    return sets_->read_rows(sets_->rows());
}

void SetsTest::a_tick_in_many_rows_changes_nothing_else() {
    store_programs(5);
    sql(QStringLiteral("UPDATE programmi SET diseqc_cmd = NULL, lev_min = '300', K22 = NULL"));
    sets_->refresh();
    const QStringList before = whole_file();
    QCOMPARE(sets_->set_in_rows(all_rows(), &Record::monitor_state, QStringLiteral("1"), 0), 0);
    QCOMPARE(sql(QStringLiteral("SELECT DISTINCT monitor_state FROM programmi")),
             QStringList{QStringLiteral("1")});
    int changed = 0;
    const QStringList after = whole_file();
    for (qsizetype k = 0; k < after.size(); ++k)
        if (after[k] != before[k]) ++changed;
    QCOMPARE(changed, 5);
    QCOMPARE(sets_->take_changes().size(), std::size_t{1});
}

void SetsTest::a_limit_in_many_rows_is_corrected_as_a_store_does() {
    store_programs(3);
    sets_->set_in_rows(all_rows(), &Record::noise_min, QStringLiteral("45"), 0);
    sets_->set_in_rows(all_rows(), &Record::lev_min, QStringLiteral("70,5"), 60);
    sets_->set_in_rows(all_rows(), &Record::mer_min, QStringLiteral("12"), 60);
    QCOMPARE(
        sql(QStringLiteral("SELECT DISTINCT noise_min || ' ' || noise_max || ' ' || lev_min || "
                           "' ' || lev_max || ' ' || mer_min FROM programmi")),
        QStringList{QStringLiteral("1 40 59 60 12")});
}

void SetsTest::programs_that_become_active_get_their_lines() {
    store_programs(4);
    sql(QStringLiteral("UPDATE programmi SET logger_pos = '' WHERE pg_num IN ('001', '003')"));
    sql(QStringLiteral("UPDATE programmi SET logger_pos = '41' WHERE pg_num = '002'"));
    sets_->refresh();
    QCOMPARE(sets_->set_in_rows(all_rows(), &Record::logger_state, QStringLiteral("1"), 0), 2);
    QCOMPARE(numbers(), QStringList({"001 00", "002 41", "003 01", "004 03"}));
}

void SetsTest::without_a_line_for_all_none_becomes_active() {
    store_programs(42);
    sql(QStringLiteral("UPDATE programmi SET logger_pos = '00' WHERE pg_num = '001'"));
    QCOMPARE(store(tuned("50"), false), Clash::none);
    QCOMPARE(numbers().constLast(), QStringLiteral("050 "));
    sets_->refresh();
    const QStringList before = whole_file();
    sets_->take_changes();
    QCOMPARE(refusal_of([&] {
                 sets_->set_in_rows(all_rows(), &Record::logger_state, QStringLiteral("1"), 0);
             }),
             QStringLiteral("The meter's logger table has no line left for all of these programs. "
                            "Nothing was stored."));
    QCOMPARE(whole_file(), before);
    QVERIFY(sets_->take_changes().empty());
}

void SetsTest::what_another_program_changed_is_not_overwritten_by_many() {
    store_programs(3);
    const std::vector<PlanRow> seen = all_rows();
    sql(QStringLiteral("UPDATE programmi SET mer_min = '9' WHERE pg_num = '003'"));
    const QStringList before = whole_file();
    const QString refused =
        refusal_of([&] { sets_->set_in_rows(seen, &Record::mer_min, QStringLiteral("12"), 0); });
    QVERIFY2(refused.startsWith(QStringLiteral("Another program has changed these programs")),
             qPrintable(refused));
    QVERIFY(!refusal_of([&] { sets_->delete_rows({seen[0], seen[2]}); }).isEmpty());
    QVERIFY(!refusal_of([&] { sets_->add_copies({seen[0], seen[2]}); }).isEmpty());
    QCOMPARE(whole_file(), before);
    QVERIFY(elsewhere({QStringLiteral("DELETE FROM programmi WHERE pg_num = '001'")}));
    QVERIFY(!refusal_of([&] {
                 sets_->reorder({seen[1].row, seen[0].row, seen[2].row});
             }).isEmpty());
}

void SetsTest::many_programs_are_deleted_but_one_stays() {
    store_programs(4);
    const std::vector<PlanRow> seen = all_rows();
    QCOMPARE(refusal_of([&] { sets_->delete_rows(seen); }),
             QStringLiteral("The last program of a plan stays. Nothing was deleted."));
    sets_->last_program();
    sets_->delete_rows({seen[0], seen[2]});
    QCOMPARE(numbers(), QStringList({"002 01", "004 03"}));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("004"));
}

void SetsTest::copies_stand_behind_what_was_copied() {
    store_programs(4);
    const std::vector<PlanRow> seen = all_rows();
    sets_->add_copies({seen[0], seen[1]});
    QCOMPARE(numbers(), QStringList({"001 ", "002 01", "000 04", "005 05", "003 02", "004 03"}));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("000"));
    QCOMPARE(sets_->program().frequenza, QStringLiteral("1001.0"));
}

void SetsTest::the_order_of_the_plan_is_changed() {
    store_programs(4);
    const std::vector<db::Bookmark> rows = sets_->rows();
    sets_->next_program();
    sets_->reorder({rows[3], rows[0], rows[2], rows[1]});
    QCOMPARE(numbers(), QStringList({"004 03", "001 ", "003 02", "002 01"}));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
}

void SetsTest::every_deed_is_taken_back_and_made_again() {
    make_two_plans();
    sets_->take_changes();
    const QList<std::function<void()>> deeds{
        [&] { store(tuned("3", "1500"), false); },
        [&] {
            sets_->last_program();
            store(tuned("4", "1600"), true);
        },
        [&] { sets_->store_oscloc(2, QStringLiteral("9750")); },
        [&] { sets_->set_in_rows(all_rows(), &Record::monitor_state, QStringLiteral("1"), 0); },
        [&] { sets_->add_copies({all_rows().front()}); },
        [&] {
            sets_->reorder({sets_->rows().rbegin(), sets_->rows().rend()});
        },
        [&] {
            sets_->delete_rows({all_rows().front(), all_rows().back()});
        },
        [&] { sets_->delete_program(); },
        [&] {
            ImportFile file = parse_import_file("frequenza\n1200\n1300\n", 0);
            sets_->apply_import(
                preview_import(file.candidates, sets_->programs(), sets_->oscillators(), 0));
        },
        [&] { sets_->copy_plan(QStringLiteral("C")); },
        [&] { sets_->copy_program(QStringLiteral("D")); },
        [&] { sets_->add_new(QStringLiteral("E")); },
        [&] { sets_->del_old(); }};
    std::vector<PlanChange> done;
    QList<QStringList> files{whole_file()};
    for (const auto& deed : deeds) {
        deed();
        const std::vector<PlanChange> changes = sets_->take_changes();
        QCOMPARE(changes.size(), std::size_t{1});
        done.push_back(changes.front());
        files += whole_file();
        QVERIFY(files[files.size() - 1] != files[files.size() - 2]);
    }
    for (std::size_t k = done.size(); k-- > 0;) {
        sets_->replay(done[k], Direction::back);
        QCOMPARE(whole_file(), files[static_cast<qsizetype>(k)]);
    }
    for (std::size_t k = 0; k < done.size(); ++k) {
        sets_->replay(done[k], Direction::forth);
        QCOMPARE(whole_file(), files[static_cast<qsizetype>(k) + 1]);
    }
    QVERIFY(sets_->take_changes().empty());
}

void SetsTest::a_store_that_changes_nothing_is_no_deed() {
    store_programs(2);
    Record record = sets_->program();
    QCOMPARE(store(record, true), Clash::none);
    QVERIFY(sets_->take_changes().empty());
}

void SetsTest::nothing_of_another_program_is_taken_back_data() {
    QTest::addColumn<QString>("meanwhile");
    QTest::newRow("changed") << "UPDATE programmi SET mer_min = '9' WHERE pg_num = '002'";
    QTest::newRow("deleted") << "DELETE FROM programmi WHERE pg_num = '002'";
    QTest::newRow("number taken")
        << "INSERT INTO programmi (nome, pg_num) VALUES ('PLAN 1', '004')";
    QTest::newRow("line taken")
        << "INSERT INTO programmi (nome, pg_num, logger_pos) VALUES ('PLAN 1', '77', '03')";
    QTest::newRow("plan gone") << "DELETE FROM gruppo";
}

void SetsTest::nothing_of_another_program_is_taken_back() {
    QFETCH(const QString, meanwhile);
    store_programs(4);
    sets_->set_in_rows({all_rows()[1]}, &Record::mer_min, QStringLiteral("5"), 0);
    const PlanChange change = sets_->take_changes().front();
    sets_->delete_rows({all_rows()[3]});
    const PlanChange deletion = sets_->take_changes().front();
    QVERIFY(elsewhere({meanwhile}));
    const QStringList before = whole_file();
    const bool both = meanwhile.contains(QStringLiteral("gruppo"));
    if (meanwhile.startsWith(QStringLiteral("INSERT")) || both)
        QCOMPARE(refusal_of([&] { sets_->replay(deletion, Direction::back); }),
                 QStringLiteral("Another program has changed this in the file since. Nothing was "
                                "undone."));
    if (!meanwhile.startsWith(QStringLiteral("INSERT")) || both)
        QVERIFY(!refusal_of([&] { sets_->replay(change, Direction::back); }).isEmpty());
    QCOMPARE(whole_file(), before);
}

void SetsTest::the_table_follows_the_plan_row_by_row() {
    store_programs(4);
    const Texts texts;
    PlanTable table(texts);
    table.follow(*sets_);
    int resets = 0;
    QObject::connect(&table, &PlanTable::modelReset, [&] { ++resets; });
    const auto shown = [&](int column) {
        QStringList cells;
        for (int row = 0; row < table.rowCount(); ++row)
            cells += table.index(row, column).data().toString();
        return cells.join(u' ');
    };
    QCOMPARE(shown(PlanTable::kNumber), QStringLiteral("001 002 003 004"));
    QCOMPARE(shown(PlanTable::kFrequency), QStringLiteral("1001.0 1002.0 1003.0 1004.0"));
    QCOMPARE(shown(PlanTable::kBand), QStringLiteral("1IF 1IF 1IF 1IF"));

    int statements = 0;
    const auto follow = [&](const std::vector<db::Bookmark>& changed) {
        statements = 0;
        db::set_statement_fault([&](const QString&) -> std::optional<QSqlError> {
            ++statements;
            return std::nullopt;
        });
        table.follow(*sets_, changed);
        db::set_statement_fault({});
    };
    sets_->next_program();
    follow({});
    QCOMPARE(statements, 0);
    QCOMPARE(store(tuned("2", "1500"), true), Clash::none);
    follow({});
    QCOMPARE(statements, 0);
    QCOMPARE(shown(PlanTable::kFrequency), QStringLiteral("1001.0 1500.0 1003.0 1004.0"));
    QCOMPARE(store(tuned("9", "1600"), false), Clash::none);
    follow({});
    // Run and read: one row.
    QCOMPARE(statements, 2);
    sets_->delete_rows({table.program(2)});
    follow({});
    QCOMPARE(shown(PlanTable::kNumber), QStringLiteral("001 002 004 009"));
    QCOMPARE(resets, 0);
    sets_->add_new(QStringLiteral("B"));
    follow({});
    QCOMPARE(table.rowCount(), 1);
    QCOMPARE(resets, 1);
}

void SetsTest::transponders_keep_their_names() {
    const Texts texts;
    PlanTable table(texts);
    const auto names = [&] {
        table.follow(*sets_);
        QStringList cells;
        for (int row = 0; row < table.rowCount(); ++row)
            cells += table.index(row, PlanTable::kName).data().toString();
        return cells.join(u'|');
    };
    QCOMPARE(names(), QString());
    const auto import = [&](const QByteArray& file) {
        sets_->apply_import(preview_import(parse_import_file(file, 0).candidates, sets_->programs(),
                                           sets_->oscillators(), 0));
    };
    import("frequenza\n1000\n");
    QVERIFY(
        sql(QStringLiteral("SELECT name FROM sqlite_master WHERE name LIKE 'trans%'")).isEmpty());
    import(
        "[Sky UK]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 10719000\nPOLARIZATION = VERTICAL\n"
        "SYMBOL_RATE = 27500000\n[Rai]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 10721000\n"
        "POLARIZATION = HORIZONTAL\nSYMBOL_RATE = 27500000\n");
    QCOMPARE(names(), QStringLiteral("|Sky UK|Rai"));
    // Tuned finely, and in another order; another polarisation is another transponder.
    sql(QStringLiteral("UPDATE programmi SET frequenza = 10718 WHERE pg_num = '001'"));
    sets_->refresh();
    sets_->reorder({sets_->rows().rbegin(), sets_->rows().rend()});
    table.follow(*sets_, sets_->rows());
    QCOMPARE(names(), QStringLiteral("Rai|Sky UK|"));
    sets_->copy_plan(QStringLiteral("C"));
    QCOMPARE(names(), QStringLiteral("Rai|Sky UK|"));
    sets_->copy_program(QStringLiteral("D"));
    QCOMPARE(names(), QStringLiteral("Rai"));
    sets_->del_old();
    const PlanChange deletion = sets_->take_changes().back();
    sets_->replay(deletion, Direction::back);
    sets_->show_changed(deletion, Direction::back);
    QCOMPARE(names(), QStringLiteral("Rai"));
    sets_->replay(deletion, Direction::forth);
    sets_->show_changed(deletion, Direction::forth);
    sets_->add_new(QStringLiteral("D"));
    QCOMPARE(store(tuned("1", "10721"), true), Clash::none);
    sql(QStringLiteral("UPDATE programmi SET lnb_volt = 2, frequenza = 10721 WHERE nome = 'D'"));
    sets_->refresh();
    QCOMPARE(names(), QString());
}

}  // namespace m47::plans
