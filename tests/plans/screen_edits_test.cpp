// SPDX-License-Identifier: GPL-3.0-or-later
// Edits that are not stored, and what is taken back.
#include "plan_table.h"
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::what_was_stored_is_undone_and_done_again() {
    start_alone();
    QVERIFY(!find<QAction>("cmdundo")->isEnabled());
    type_programs(2);
    const QString typed = stored(QStringLiteral("pg_num || ' ' || frequenza"));
    type("sat_freq_txt", QStringLiteral("1500"));
    press("store");
    QCOMPARE(find<QAction>("cmdundo")->text(), QStringLiteral("&Undo: program 002"));
    table()->selectAll();
    tick_cell(0, PlanTable::kMonitored);
    QCOMPARE(find<QAction>("cmdundo")->text(), QStringLiteral("&Undo: programs: 2"));
    press("cmdundo");
    QCOMPARE(stored(QStringLiteral("monitor_state")), QStringLiteral("0,0"));
    QCOMPARE(told_below(), QStringLiteral("Undone: programs: 2"));
    press("cmdundo");
    QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")), typed);
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1002.0"));
    QCOMPARE(column(PlanTable::kFrequency), QStringLiteral("1001.0 1002.0"));
    press("cmdredo");
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1500.0"));
    // Of another plan than the one shown, and a plan with all its rows.
    new_plan(QStringLiteral("B"));
    press("previous");
    press("cmdundo");
    QVERIFY(!program().database().gruppo().find_first(QStringLiteral("nome"), QStringLiteral("B")));
    press("cmdundo");
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0"));
    press("cmdredo");
    press("cmdredo");
    QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
    QVERIFY(!find<QAction>("cmdredo")->isEnabled());
}

void PlanScreenTest::undo_in_a_box_is_of_its_text() {
    start_alone();
    type_programs(2);
    type("sat_freq_txt", QStringLiteral("1500"));
    QTest::keyClick(find<QLineEdit>("sat_freq_txt"), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(text_of("sat_freq_txt") != QStringLiteral("1500"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("001,002"));
    table()->setFocus();
    QTest::keyClick(table(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("001"));
}

void PlanScreenTest::what_another_program_changed_is_not_undone() {
    start_alone();
    type_programs(2);
    elsewhere(QStringLiteral("UPDATE programmi SET mer_min = '9' WHERE pg_num = '002'"));
    answering(pressed("cmdundo"), pressing(QMessageBox::Ok));
    QCOMPARE(told_.constLast(), QStringLiteral("M47|Another program has changed this in the file "
                                               "since. Nothing was undone."));
    QCOMPARE(stored(QStringLiteral("coalesce(mer_min, '-')")), QStringLiteral("1,9"));
    // The step before it is not held up.
    QCOMPARE(find<QAction>("cmdundo")->text(), QStringLiteral("&Undo: program 001"));
    press("cmdundo");
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,002"));
}

void PlanScreenTest::edits_of_a_program_without_a_number_are_offered_back() {
    start_alone();
    type("sat_freq_txt", QStringLiteral("1234.5"));
    press("next_prog");
    QCOMPARE(find<QLabel>("edits_text")->text(),
             QStringLiteral("Edits of the program without a number were not stored"));
    click("edits_back");
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1234.5"));
}

void PlanScreenTest::edits_are_marked_and_offered_back() {
    start_alone();
    type_programs(3);
    QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup"));
    QVERIFY(!screen_->findChild<QWidget*>(QStringLiteral("edits_bar")));
    type("sat_freq_txt", QStringLiteral("1503"));
    find<QComboBox>("ol_optval")->setEnabled(true);
    type_oscillator(QStringLiteral("9750"), false);
    QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup *"));
    press("previous_prog");
    QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup"));
    QCOMPARE(find<QLabel>("edits_text")->text(),
             QStringLiteral("Edits of program 003 were not stored"));
    type("sat_freq_txt", QStringLiteral("1502"));
    click("edits_back");
    QCOMPARE(text_of("prog_num"), QStringLiteral("003"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1503"));
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("9750"));
    QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup *"));
    // The edits that had to make room are offered in their turn.
    QCOMPARE(find<QLabel>("edits_text")->text(),
             QStringLiteral("Edits of program 002 were not stored"));
    press("store");
    QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup"));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0,1503.0"));
    click("edits_back");
    QVERIFY(!find<QWidget>("edits_bar")->isVisible());
    press("store");
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1502.0,1503.0"));
    type("sat_freq_txt", QStringLiteral("1777"));
    new_plan(QStringLiteral("B"));
    click("edits_back");
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1777"));
    press("next");
    click("edits_forget");
    QVERIFY(!find<QWidget>("edits_bar")->isVisible());
}

void PlanScreenTest::going_through_the_boxes_is_no_edit() {
    start_alone();
    for (const char* box : {"prog_num", "sat_freq_txt", "srqpsk_txt", "chbw_txt"})
        QTest::keyClick(find<QLineEdit>(box), Qt::Key_Tab);
    for (const char* box : {"prog_num", "sat_freq_txt", "srqpsk_txt", "chbw_txt", "lev_mintxt"})
        find<QLineEdit>(box)->setFocus();
    QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup"));
    press("next_prog");
    QVERIFY(!screen_->findChild<QWidget*>(QStringLiteral("edits_bar")));
}

void PlanScreenTest::edits_put_back_do_not_overwrite_what_was_stored_since() {
    start_alone();
    type_programs(2);
    type("sat_freq_txt", QStringLiteral("1502"));
    press("previous_prog");
    elsewhere(QStringLiteral("UPDATE programmi SET mer_max = '9' WHERE pg_num = '002'"));
    click("edits_back");
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1502"));
    QCOMPARE(text_of("mer_maxtxt"), QStringLiteral("9"));
    press("previous_prog");
    elsewhere(QStringLiteral("UPDATE programmi SET frequenza = 1600 WHERE pg_num = '002'"));
    click("edits_back");
    QStringList changes;
    answering(pressed("store"), noting_changes(changes, "changed_neither"));
    QCOMPARE(changes, QStringList({"Frequency, MHz|1600.0|1502.0"}));
    QCOMPARE(stored(QStringLiteral("frequenza || ' ' || mer_max")),
             QStringLiteral("1001.0 2,1600.0 9"));
    // Another order of the plan has put another program into its row.
    press("previous_prog");
    QVERIFY(find<QWidget>("edits_bar")->isVisible());
    table()->sortByColumn(PlanTable::kNumber, Qt::DescendingOrder);
    press("cmdkeeporder");
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("002,001"));
    click("edits_back");
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1502"));
    press("next_prog");
    elsewhere(QStringLiteral("DELETE FROM programmi WHERE pg_num = '002'"));
    answering([this] { click("edits_back"); }, pressing(QMessageBox::Ok));
    QVERIFY(told_.constLast().contains(QStringLiteral("Another program has deleted")));
}

void PlanScreenTest::a_refused_new_program_is_put_back_on_request() {
    start_alone();
    type_programs(2);
    press("previous_prog");
    type("sat_freq_txt", QStringLiteral("1555"));
    answering([this] { enter("prog_num", QStringLiteral("2")); }, pressing(QMessageBox::Ok));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1002.0"));
    QCOMPARE(find<QPushButton>("edits_back")->text(), QStringLiteral("Put back what was typed"));
    click("edits_back");
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1555"));
    enter("prog_num", QStringLiteral("7"));
    QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")),
             QStringLiteral("001 1001.0,002 1002.0,007 1555.0"));
    QVERIFY(!find<QWidget>("edits_bar")->isVisible());
}

void PlanScreenTest::edits_are_asked_about_where_that_is_chosen() {
    start_alone();
    type_programs(3);
    program_state().corrected.ask_leave = true;
    type("sat_freq_txt", QStringLiteral("1503"));
    answering(pressed("previous_prog"), pressing(QMessageBox::Cancel));
    QCOMPARE(told_, QStringList{"M47|The edits of program 003 are not stored. Store them?"});
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1503"));
    answering([this] { click_row(0); }, pressing(QMessageBox::Cancel));
    QCOMPARE(selected_numbers(), QStringList("003"));
    answering([this] { screen_->parentWidget()->close(); }, pressing(QMessageBox::Cancel));
    QVERIFY(window().screen_of(QStringLiteral("program")));
    answering([this] { window().close(); }, pressing(QMessageBox::Cancel));
    QVERIFY(window().isVisible());
    answering([this] { click_row(0); }, pressing(QMessageBox::Save));
    QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("1001.0,1002.0,1503.0"));
    type("sat_freq_txt", QStringLiteral("1777"));
    for (const char* key : {"next", "cmdcopyplan", "cmdcopyprog", "cmdimport", "new", "cmdundo",
                            "cmdpasterows", "cmdinsertrows"})
        answering(pressed(key), pressing(QMessageBox::Cancel));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1777"));
    answering(pressed("next_prog"), pressing(QMessageBox::Discard));
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    QVERIFY(!screen_->findChild<QWidget*>(QStringLiteral("edits_bar")));
}

}  // namespace m47::plans
