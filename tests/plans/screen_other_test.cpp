// SPDX-License-Identifier: GPL-3.0-or-later
// Another program writes into the same file.
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::plans_that_came_into_the_file_are_there_at_once() {
    start_alone();
    change_file(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OLD')"));
    press("next");
    QCOMPARE(text_of("grp_name"), QStringLiteral("OLD"));
    QCOMPARE(beeps_, 0);
    press("previous");
    // What is being typed stays, unless its program has changed.
    type("prog_num", QStringLiteral("42"));
    change_file(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OLDER')"));
    screen_->database_changed();
    QCOMPARE(text_of("prog_num"), QStringLiteral("42"));
    change_file(QStringLiteral("UPDATE programmi SET pg_num = '008'"));
    window().open_screen(QStringLiteral("setport"));
    window().open_screen(QStringLiteral("program"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
}

void PlanScreenTest::a_store_asks_where_another_program_has_stored_meanwhile() {
    start_alone();
    type_two_programs();
    const QString both = QStringLiteral("frequenza || ' ' || lev_min");
    const auto changed_elsewhere = [&](const char* level) {
        elsewhere(QStringLiteral("UPDATE programmi SET lev_min = '%1' WHERE pg_num = '002'")
                      .arg(QLatin1String(level)));
    };
    changed_elsewhere("41");
    type("sat_freq_txt", QStringLiteral("1500"));
    QStringList changes;
    answering(pressed("store"), noting_changes(changes, "changed_neither"));
    QCOMPARE(changes, QStringList({"Frequency, MHz|1002.0|1500.0", "Level, minimum|41|20"}));
    // Nothing is stored and nothing typed is lost; storing again asks again.
    QCOMPARE(stored(both), QStringLiteral("1001.0 20,1002.0 41"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1500"));
    answering(pressed("store"), choosing_button("changed_stored"));
    QCOMPARE(stored(both), QStringLiteral("1001.0 20,1002.0 41"));
    QCOMPARE(text_of("sat_freq_txt") + u' ' + text_of("lev_mintxt"), QStringLiteral("1002.0 41"));
    type("sat_freq_txt", QStringLiteral("1600"));
    changed_elsewhere("42");
    answering(pressed("store"), choosing_button("changed_mine"));
    QCOMPARE(stored(both), QStringLiteral("1001.0 20,1600.0 41"));
    // Nobody has changed it since: nothing is asked.
    type("lev_mintxt", QStringLiteral("43"));
    press("store");
    QCOMPARE(stored(both), QStringLiteral("1001.0 20,1600.0 43"));
}

void PlanScreenTest::a_deletion_asks_where_another_program_has_stored_meanwhile() {
    start_alone();
    type_two_programs();
    const auto changed_elsewhere = [&](const char* level) {
        elsewhere(QStringLiteral("UPDATE programmi SET lev_min = '%1' WHERE pg_num = '002'")
                      .arg(QLatin1String(level)));
    };
    const auto remove = pressed("programma_delete");
    const auto confirmed = pressing(QMessageBox::Ok);
    changed_elsewhere("41");
    QStringList changes;
    answering_each(remove, {confirmed, noting_changes(changes, "changed_neither")});
    QCOMPARE(changes, QStringList({"002: Level, minimum|41|20"}));
    QCOMPARE(stored(QStringLiteral("lev_min")), QStringLiteral("20,41"));
    QCOMPARE(text_of("lev_mintxt"), QStringLiteral("41"));
    changed_elsewhere("42");
    answering_each(remove, {confirmed, choosing_button("changed_mine")});
    QCOMPARE(stored(QStringLiteral("lev_min")), QStringLiteral("20"));
}

void PlanScreenTest::a_plan_is_not_deleted_with_what_another_program_has_stored_in_it() {
    start_alone();
    program_state().texts.language = kItalian;
    type_two_programs();
    const auto remove = pressed("delete");
    const auto confirmed = pressing(QMessageBox::Ok);
    elsewhere(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OTHER')"));
    elsewhere(
        QStringLiteral("INSERT INTO programmi (nome, pg_num, frequenza) VALUES ('PLAN 1', "
                       "'003', 1003)"));
    elsewhere(QStringLiteral("UPDATE configurazione SET loc_osc2 = 10600"));
    QStringList changes;
    answering_each(remove, {confirmed, noting_changes(changes, "changed_neither")});
    QCOMPARE(changes, QStringList({"003: Programma|003|", "003: Frequenza, MHz|1003|",
                                   "Oscillatore 2, MHz|10600|"}));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0,1003.0"));
    // What has been asked about is known now.
    answering(remove, confirmed);
    QCOMPARE(stored(QStringLiteral("frequenza")), QString());
}

void PlanScreenTest::a_plan_that_has_become_the_last_one_stays_and_it_is_told() {
    start_alone();
    type_two_programs();
    elsewhere(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('OTHER')"));
    answering_each(pressed("delete"),
                   {[this](QWidget* front) {
                        elsewhere(QStringLiteral("DELETE FROM gruppo WHERE nome = 'OTHER'"));
                        pressing(QMessageBox::Ok)(front);
                    },
                    pressing(QMessageBox::Ok)});
    QVERIFY2(told_.last().contains(QStringLiteral("The last one stays")), qPrintable(told_.last()));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0"));
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
}

void PlanScreenTest::what_is_stored_twice_alike_is_not_asked() {
    start_alone();
    type_two_programs();
    type("sat_freq_txt", QStringLiteral("1500"));
    elsewhere(QStringLiteral("UPDATE programmi SET frequenza = 1500 WHERE pg_num = '002'"));
    press("store");
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1500.0"));
    QCOMPARE(told_, QStringList());
}

void PlanScreenTest::an_oscillator_that_another_program_has_stored_is_asked_about() {
    start_alone();
    program_state().texts.language = kItalian;
    type_two_programs_of_an_oscillator();
    const auto oscillator_elsewhere = [&](int mhz) {
        elsewhere(QStringLiteral("UPDATE configurazione SET loc_osc1 = %1").arg(mhz));
    };
    oscillator_elsewhere(10600);
    const QString oscillators = QStringLiteral("loc_osc1");
    QStringList changes;
    answering([this] { type_oscillator(QStringLiteral("9800")); },
              noting_changes(changes, "changed_neither"));
    QCOMPARE(changes, QStringList("Oscillatore 1, MHz|10600|9800"));
    QCOMPARE(stored(oscillators), QStringLiteral("10600.0,10600.0"));
    // A new program would overwrite it as well.
    type("prog_num", QStringLiteral("3"));
    answering(pressed("store_new"), choosing_button("changed_stored"));
    QCOMPARE(stored(oscillators), QStringLiteral("10600.0,10600.0"));
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("10600"));
    // Another program of the plan is shown with the oscillator that is stored by then.
    oscillator_elsewhere(10700);
    press("previous_prog");
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("10700"));
    oscillator_elsewhere(10800);
    answering([this] { type_oscillator(QStringLiteral("9900")); }, choosing_button("changed_mine"));
    QCOMPARE(stored(oscillators), QStringLiteral("9900.0,9900.0"));
}

void PlanScreenTest::an_upload_waits_for_whoever_wants_to_go_on_typing() {
    start_on_patient_line();
    type_two_programs();
    elsewhere(QStringLiteral("UPDATE programmi SET lev_min = '41' WHERE pg_num = '002'"));
    type("sat_freq_txt", QStringLiteral("1500"));
    answering(pressed("accoda"), choosing_button("changed_neither"));
    QCOMPARE(line_->take_commands(), QStringList());
    answering_each(pressed("accoda"),
                   {choosing_button("changed_stored"), pressing(QMessageBox::Yes)});
    const QStringList sent = line_->take_commands();
    QVERIFY(!sent.isEmpty());
    QVERIFY2(sent.filter(QStringLiteral("1500")).isEmpty(), qPrintable(sent.join(u';')));
}

void PlanScreenTest::an_upload_that_cannot_keep_the_table_ends_cleanly() {
    start_with_meter();
    type_three_programs();
    file_with(QStringLiteral("backup"), {});
    answering_each(pressed("sostituisci"), {pressing(QMessageBox::Yes), pressing(QMessageBox::Ok)});
    QVERIFY2(told_.constLast().contains(QStringLiteral("backup")), qPrintable(told_.last()));
    QCOMPARE(new_commands(), QStringList({"MEASURE", "DATAPROGRAM?"}));
    QCOMPARE(progress()->text(), QString());
    QCOMPARE(text_of("prog_num"), QStringLiteral("010"));
}

void PlanScreenTest::closing_during_an_upload_waits_for_the_comparison_to_be_read() {
    start_with_meter();
    click("ol_opt_0");
    pick("diseqc_cmd", 73);
    press("cmdverify");
    const QPointer<ProgramSet> alive(screen_);
    connect(
        screen_, &ProgramSet::upload_state, screen_,
        [this] {
            QMetaObject::invokeMethod(
                screen_, [this] { screen_->parentWidget()->close(); }, Qt::QueuedConnection);
        },
        Qt::SingleShotConnection);
    bool stayed = false;
    answering_each(pressed("accoda"), {pressing(QMessageBox::Yes), [&](QWidget* front) {
                                           QTimer::singleShot(150, front, [&, front] {
                                               stayed = !alive.isNull();
                                               qobject_cast<QDialog*>(front)->accept();
                                           });
                                       }});
    QVERIFY(stayed);
    QTRY_VERIFY(!alive);
}

void PlanScreenTest::what_the_meter_holds_beside_the_plan_is_shown() {
    start_with_meter();
    plan_a_line();
    work_at_the_meter(QStringLiteral("DATAPROGRAM 05 10 01"));
    press("cmdverify");
    QString summary;
    QStringList row;
    answering_each(pressed("nuovo"), {pressing(QMessageBox::Yes), [&](QWidget* front) {
                                          summary =
                                              front->findChild<QLabel*>("verify_summary")->text();
                                          auto* table = front->findChild<QTableWidget*>();
                                          for (int k = 0; k < table->columnCount(); ++k)
                                              row += table->item(1, k)->text();
                                          qobject_cast<QDialog*>(front)->accept();
                                      }});
    QCOMPARE(summary,
             QStringLiteral("Lines of the logger table that are not as planned: 1.\nActive lines "
                            "planned: 1. Lines read from the meter: 2, active: 2."));
    QCOMPARE(row, QStringList({"05", "none", "program 10, active", QString::fromUtf8("✗")}));
    QCOMPARE(progress()->text(), QStringLiteral("14 of 14 commands answered OK"));
}

void PlanScreenTest::a_refused_store_does_not_hold_up_the_question() {
    start_with_meter();
    enter("prog_num", QStringLiteral("7"));
    enter("prog_num", QStringLiteral("8"));
    // A screen takes the language on when it opens.
    program_state().texts.language = kItalian;
    press("cmdexit");
    QTRY_VERIFY(!window().screen_of(QStringLiteral("program")));
    open_screen();
    press("next_prog");
    press("next_prog");
    type("prog_num", QStringLiteral("7"));
    answering_each(pressed("accoda"), {pressing(QMessageBox::Ok), pressing(QMessageBox::No)});
    QCOMPARE(told_, QStringList({QString::fromUtf8("Error|Il programma esiste già nel "
                                                   "database."),
                                 "M47|Aggiunge il nuovo piano di programmi\rVuoi continuare?"}));
    QCOMPARE(icons_, QList<QMessageBox::Icon>({QMessageBox::Warning, QMessageBox::Question}));
    QCOMPARE(beeps_, 2);
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007,008"));
    QCOMPARE(new_commands(), QStringList());
}

void PlanScreenTest::the_unit_goes_out_with_the_plan() {
    start_with_meter();
    press("cmdlev_2");
    press("monitor");
    click("ol_opt_0");
    type("lev_mintxt", QStringLiteral("-100"));
    type("lev_maxtxt", QStringLiteral("20"));
    answering(pressed("accoda"), pressing(QMessageBox::Yes));
    QCOMPARE(stored(QStringLiteral("lev_min || ' ' || lev_max")), QStringLiteral("-89 11"));
    QCOMPARE(new_commands().mid(0, 4),
             QStringList({"MEASURE", "CHBW 01", "UNIT 02", "PROGRAM 00"}));
}

}  // namespace m47::plans
