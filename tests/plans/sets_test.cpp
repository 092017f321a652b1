// SPDX-License-Identifier: GPL-3.0-or-later
#include "sets_test.h"

namespace m47::plans {

QStringList SetsTest::sql(const QString& statement) {
    return db::run_sql(db::database_in(folder_->path()), {statement});
}

QStringList SetsTest::numbers() {
    return sql(QStringLiteral("SELECT coalesce(pg_num, '-') || ' ' || coalesce(logger_pos, "
                              "'-') FROM programmi WHERE nome = '%1' ORDER BY rowid")
                   .arg(sets_->plan()));
}

void SetsTest::lock_file(bool on) {
    QSqlQuery(QStringLiteral("PRAGMA query_only = %1").arg(on), database_->connection());
}

bool SetsTest::elsewhere(const QStringList& statements) {
    bool done = true;
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "elsewhere");
        other.setDatabaseName(db::database_in(folder_->path()));
        other.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
        done = other.open();
        for (const QString& statement : statements) done = QSqlQuery(other).exec(statement) && done;
    }
    QSqlDatabase::removeDatabase("elsewhere");
    return done;
}

void SetsTest::with_another_program_at_each_call(const QStringList& statements,
                                                 const std::function<void()>& change,
                                                 const std::function<void()>& look) {
    int came_in = 0;
    for (int nth = 1, calls = nth; nth <= calls; ++nth) {
        cleanup();
        init();
        make_two_plans();
        calls = 0;
        db::set_statement_fault([&](const QString&) -> std::optional<QSqlError> {
            if (++calls == nth && elsewhere(statements)) ++came_in;
            return std::nullopt;
        });
        try {
            change();
        } catch (const Fault&) {
            // Told: nothing was changed then.
        }
        db::set_statement_fault({});
        look();
        if (QTest::currentTestFailed()) return qWarning("before call %d", nth);
    }
    QVERIFY(came_in > 0);
}

void SetsTest::make_two_plans() {
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

QStringList SetsTest::deleting(const char* plan) {
    QStringList statements;
    for (const char* table : {"programmi", "configurazione", "gruppo"})
        statements += QStringLiteral(
                          "DELETE FROM %1 WHERE nome = '%2' AND (SELECT count(*) FROM gruppo) "
                          "> 1")
                          .arg(QLatin1String(table), QLatin1String(plan));
    return statements;
}

programme::ProgramRecord SetsTest::tuned(const char* number, const char* frequency) {
    programme::ProgramRecord record = import_defaults(0);
    record.pg_num = QString::fromLatin1(number);
    record.frequenza = QString::fromLatin1(frequency);
    return record;
}

Clash SetsTest::store(programme::ProgramRecord record, bool over) {
    QString none;
    return sets_->store_record(record, none, 0, over);
}

void SetsTest::init() {
    // In memory where there is such a place: a test commits often.
    const bool memory = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
    folder_ =
        std::make_unique<QTemporaryDir>((memory ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
                                        QStringLiteral("/m47-plans-XXXXXX"));
    database_ = db::made_in(folder_->path());
    sets_ = std::make_unique<PlanSets>(*database_);
}

void SetsTest::cleanup() {
    sets_.reset();
    database_.reset();
}

void SetsTest::a_new_plan_has_one_empty_program() {
    sets_->add_new(QStringLiteral("B"));
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    QVERIFY(programme::is_blank(sets_->program()));
    QCOMPARE(sets_->oscillators(), programme::Oscillators());
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

void SetsTest::an_existing_name_makes_no_second_plan() {
    sets_->add_new(QStringLiteral("B"));
    sets_->first_plan();
    sets_->add_new(QStringLiteral("B"));
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM gruppo")), QStringList{"2"});
    QCOMPARE(numbers().size(), 1);
}

void SetsTest::the_last_plan_stays() {
    QVERIFY(!sets_->can_delete_plan());
    sets_->del_old();
    QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
    QCOMPARE(numbers().size(), 1);
}

void SetsTest::a_plan_goes_with_all_its_rows() {
    sets_->add_new(QStringLiteral("B"));
    QCOMPARE(store(tuned("1"), false), Clash::none);
    sets_->del_old();
    QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
    for (const char* table : {"gruppo", "configurazione", "programmi"})
        QCOMPARE(sql(QStringLiteral("SELECT nome FROM %1").arg(QLatin1String(table))),
                 QStringList{"PLAN 1"});
}

void SetsTest::quotes_in_a_name_are_just_characters() {
    sets_->add_new(QStringLiteral("A\"' OR 1"));
    QCOMPARE(store(tuned("1"), true), Clash::none);
    sets_->del_old();
    QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
    QCOMPARE(numbers(), QStringList{"- -"});
}

void SetsTest::an_import_spares_what_another_program_has_stored_meanwhile() {
    const std::vector<ImportCandidate> none;
    ImportPreview import = preview_import(none, sets_->programs(), sets_->oscillators(), 0);
    import.replaces_blank = true;
    PlanSets other(*database_);
    QString oscillator;
    programme::ProgramRecord theirs = tuned("5");
    QCOMPARE(other.store_record(theirs, oscillator, 0, true), Clash::none);
    M47_VERIFY_FAULT(sets_->apply_import(import), "meanwhile");
    QCOMPARE(numbers(), QStringList{"005 "});
}

void SetsTest::what_was_seen_is_overwritten_and_nothing_else() {
    QCOMPARE(store(tuned("1"), true), Clash::none);
    const StoredProgram seen = sets_->stored();
    PlanSets other(*database_);
    QString oscillator;
    programme::ProgramRecord theirs = tuned("1", "1200");
    QCOMPARE(other.store_record(theirs, oscillator, 0, true), Clash::none);
    programme::ProgramRecord mine = tuned("1", "1300");
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

void SetsTest::the_same_in_another_form_is_no_change() {
    programme::ProgramRecord now = tuned("1", "1200.0");
    now.satchbw = QStringLiteral("05");
    const StoredProgram known{tuned("1"), {}};
    programme::ProgramRecord typed = now;
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
    // An oscillator likewise; one that is set and one that is not are two.
    const auto of = [&](const char* in_file, const char* to_be_stored) {
        return ChangedMeanwhile({now, {QString::fromLatin1(in_file)}}, now,
                                QString::fromLatin1(to_be_stored), true);
    };
    const StoredProgram seen{now, {QStringLiteral("5150")}};
    for (const auto& [in_file, wanted] : {std::pair("9750.0", "9750"), {" ", ""}}) {
        need_unchanged(seen, of(in_file, wanted));
        QVERIFY(changed_fields(of(in_file, wanted)).isEmpty());
    }
    for (const auto& [in_file, wanted] : {std::pair("9750", "10600"), {"", "9750"}, {"0", ""}}) {
        M47_VERIFY_FAULT(need_unchanged(seen, of(in_file, wanted)), "changed meanwhile");
        QCOMPARE(changed_fields(of(in_file, wanted)).size(), 1);
    }
}

void SetsTest::two_windows_in_any_order_lose_nothing() {
    QCOMPARE(store(tuned("1"), true), Clash::none);
    const auto elsewhere = db::opened(db::database_in(folder_->path()));
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
        programme::ProgramRecord record = tuned("1");
        record.frequenza = QString::number(1000 + step);
        QString oscillator;
        const bool stale = seen_mhz[w] != in_file;
        bool refused = false;
        try {
            QCOMPARE(windows[w]->store_record(record, oscillator, 0, true, &seen[w]), Clash::none);
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

void SetsTest::the_last_plan_stays_whenever_another_program_deletes_the_rest() {
    with_another_program_at_each_call(
        deleting("B"), [this] { sets_->del_old(); },
        [this] {
            QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM gruppo")), QStringList{"1"});
            QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi")), QStringList{"2"});
        });
}

void SetsTest::the_last_program_stays_whenever_another_program_deletes_the_rest() {
    with_another_program_at_each_call(
        {QStringLiteral("DELETE FROM programmi WHERE nome = 'A' AND pg_num = '002' AND "
                        "(SELECT count(*) FROM programmi WHERE nome = 'A') > 1")},
        [this] { sets_->delete_program(); },
        [this] {
            QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi WHERE nome = 'A'")),
                     QStringList{"1"});
        });
}

void SetsTest::a_copied_program_has_its_own_number_whoever_stores_meanwhile() {
    with_another_program_at_each_call(
        {QStringLiteral("INSERT INTO programmi (nome, pg_num) SELECT 'B', '000' WHERE NOT "
                        "EXISTS (SELECT 1 FROM programmi WHERE nome = 'B' AND pg_num = '000')")},
        [this] { QCOMPARE(sets_->copy_program("B"), ImportProblem::none); },
        [this] {
            const QString count = QStringLiteral(
                "SELECT count(pg_num) - count(DISTINCT pg_num) FROM programmi WHERE nome = "
                "'B'");
            QCOMPARE(sql(count), QStringList{"0"});
            QCOMPARE(sql("SELECT count(*) > 2 FROM programmi WHERE nome = 'B'"), QStringList{"1"});
        });
}

void SetsTest::a_plan_is_made_once_whoever_makes_it_meanwhile_data() {
    QTest::addColumn<bool>("copied");
    QTest::newRow("empty") << false;
    QTest::newRow("copied") << true;
}

void SetsTest::a_plan_is_made_once_whoever_makes_it_meanwhile() {
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

void SetsTest::an_import_spares_oscillators_that_another_program_has_stored_meanwhile() {
    const ImportFile file = parse_import_file("frequenza,oscillator\n11000,9750\n", 0);
    const ImportPreview import =
        preview_import(file.candidates, sets_->programs(), sets_->oscillators(), 0);
    sql(QStringLiteral("UPDATE configurazione SET loc_osc1 = 5150"));
    M47_VERIFY_FAULT(sets_->apply_import(import), "oscillators");
    QCOMPARE(sql(QStringLiteral("SELECT loc_osc1 FROM configurazione")), QStringList{"5150"});
    QCOMPARE(numbers(), QStringList{"- -"});
}

}  // namespace m47::plans

QTEST_GUILESS_MAIN(m47::plans::SetsTest)
