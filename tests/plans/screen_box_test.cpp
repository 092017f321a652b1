// SPDX-License-Identifier: GPL-3.0-or-later
// What is shown, typed and stored.
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::it_opens_as_technicians_know_it() {
    start_alone();
    QCOMPARE(screen_->objectName(), QStringLiteral("program_set"));
    QCOMPARE(screen_->windowTitle(), QStringLiteral("Plan Setup"));
    QStringList keys;
    for (const QAction* key : find<QToolBar>("barracomando")->actions())
        if (!key->isSeparator()) keys += key->objectName();
    QCOMPARE(keys, QStringList({"previous", "next", "new", "delete", "store_new", "store",
                                "programma_delete", "previous_prog", "next_prog", "accoda",
                                "sostituisci", "nuovo", "monitor"}));
    for (const QAction* key : find<QToolBar>("barracomando")->actions())
        QVERIFY(key->isSeparator() || !key->icon().isNull());
    QCOMPARE(find<QMenu>("cmdmenu")->title(), QStringLiteral("Menu"));
    QCOMPARE(find<QMenu>("cmdmeaunit")->title(), QStringLiteral("&Unit"));
    QCOMPARE(find<QAction>("cmdverify")->text(), QStringLiteral("&Verify upload"));
    QVERIFY(!find<QAction>("cmdverify")->isChecked());
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    QVERIFY(!find<QWidget>("monitor_opt")->isVisible());
    QVERIFY(!find<QWidget>("dig_opt")->isVisible());
    QCOMPARE(find<QComboBox>("diseqc_cmd")->count(), 74);
    QCOMPARE(find<QComboBox>("diseqc_cmd2")->itemText(73), QStringLiteral("NONE"));
    QCOMPARE(find<QComboBox>("logger_pos")->count(), 43);
    QCOMPARE(find<QComboBox>("logger_pos")->itemText(1), QStringLiteral("00"));
    QCOMPARE(find<QComboBox>("logger_pos")->itemText(42), QStringLiteral("41"));
    QCOMPARE(find<QComboBox>("ol_optval")->count(), 4);
    QCOMPARE(find<QComboBox>("k22_state")->itemText(0), QStringLiteral("OFF"));
    QCOMPARE(find<QComboBox>("lnb_state")->itemText(2), QStringLiteral("18V"));
    const QRect area = screen_->parentWidget()->parentWidget()->rect();
    QVERIFY(area.contains(screen_->parentWidget()->geometry()));
}

void PlanScreenTest::every_tooltip_stands_in_both_languages_data() {
    QTest::addColumn<int>("language");
    QTest::newRow("english") << int(kEnglish);
    QTest::newRow("italian") << int(kItalian);
}

void PlanScreenTest::every_tooltip_stands_in_both_languages() {
    QFETCH(int, language);
    start_alone(language);
    for (const Tooltip& tooltip : plan_tooltips()) {
        const bool italian = language == kItalian && tooltip.italian;
        const char* text = italian ? tooltip.italian : tooltip.english;
        QCOMPARE(find<QObject>(tooltip.control)->property("toolTip").toString(),
                 QString::fromUtf8(text));
    }
}

void PlanScreenTest::a_control_without_an_italian_tooltip_keeps_the_english_one() {
    start_alone(kItalian);
    QCOMPARE(find<QWidget>("sat_opt")->toolTip(), QStringLiteral("Satellite options"));
    QCOMPARE(find<QWidget>("dig_opt")->toolTip(), QStringLiteral("Opzioni acquisizione QPSK"));
}

void PlanScreenTest::an_empty_program_is_shown_empty_and_nothing_is_changed() {
    start_alone();
    for (const char* box : {"prog_num", "sat_freq_txt", "srqpsk_txt", "chbw_txt", "lev_mintxt",
                            "chber_mintxt", "mer_maxtxt"})
        QCOMPARE(text_of(box), QString());
    QVERIFY(find<QRadioButton>("ol_opt_1")->isChecked());
    QVERIFY(find<QComboBox>("ol_optval")->isEnabled());
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QString());
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-"));
}

void PlanScreenTest::plans_are_walked_with_beeps_at_the_ends() {
    start_alone();
    new_plan(QStringLiteral("b"));
    press("next");
    QCOMPARE(beeps_, 1);
    QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
    press("previous");
    QCOMPARE(beeps_, 1);
    press("previous");
    QCOMPARE(beeps_, 2);
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    press("next");
    QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
    press("next_prog");
    press("previous_prog");
    QCOMPARE(beeps_, 4);
}

void PlanScreenTest::a_new_plan_is_asked_for_in_the_language() {
    start_alone(kItalian);
    new_plan(QStringLiteral("europe and more"));
    QCOMPARE(told_, QStringList{"VKDM47|Aggiungi un piano di programmi"});
    QCOMPARE(text_of("grp_name"), QStringLiteral("EUROPE AND"));
    new_plan(QString());
    QCOMPARE(text_of("grp_name"), QStringLiteral("EUROPE AND"));
    new_plan(QStringLiteral("plan 1"));
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    press("next");
    QCOMPARE(text_of("grp_name"), QStringLiteral("EUROPE AND"));
    press("next");
    QCOMPARE(beeps_, 1);
}

void PlanScreenTest::plans_and_programs_are_deleted_after_a_question() {
    start_alone();
    press("delete");
    press("programma_delete");
    new_plan(QStringLiteral("B"));
    enter("prog_num", QStringLiteral("7"));
    told_.clear();
    answering(pressed("programma_delete"), pressing(QMessageBox::Cancel));
    QCOMPARE(stored(QStringLiteral("pg_num")), QString("-,007"));
    answering(pressed("programma_delete"), pressing(QMessageBox::Ok));
    QCOMPARE(stored(QStringLiteral("pg_num")), QString("-"));
    press("programma_delete");
    answering(pressed("delete"), pressing(QMessageBox::Cancel));
    QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
    answering(pressed("delete"), pressing(QMessageBox::Ok));
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    QCOMPARE(told_, QStringList({"VKDM47|Remove program: 007", "VKDM47|Remove program: 007",
                                 "VKDM47|Remove program: B", "VKDM47|Remove program: B"}));
}

void PlanScreenTest::enter_in_the_number_adds_a_program() {
    start_alone();
    click("ol_opt_0");
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("920.0"));
    QVERIFY(!find<QComboBox>("ol_optval")->isEnabled());
    enter("sat_freq_txt", QStringLiteral("1234.5"));
    enter("prog_num", QStringLiteral("150"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("099"));
    QCOMPARE(find<QComboBox>("logger_pos")->currentText(), QStringLiteral("01"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1234.5"));
    enter("prog_num", QStringLiteral("7"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,099,007"));
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-,01,02"));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-,1234.5,1234.5"));
}

void PlanScreenTest::a_number_that_exists_is_refused() {
    start_alone();
    enter("prog_num", QStringLiteral("7"));
    press("previous_prog");
    type("prog_num", QStringLiteral("7"));
    answering(pressed("store_new"), [](QWidget* front) {
        QCOMPARE(qobject_cast<QMessageBox*>(front)->icon(), QMessageBox::Warning);
        pressing(QMessageBox::Ok)(front);
    });
    QCOMPARE(told_, QStringList{"Error|The Programme in the data base already exist."});
    QCOMPARE(beeps_, 2);
    QCOMPARE(text_of("prog_num"), QStringLiteral("007"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
}

void PlanScreenTest::a_logger_position_that_is_taken_is_refused() {
    start_alone(kItalian);
    enter("prog_num", QStringLiteral("7"));
    enter("prog_num", QStringLiteral("8"));
    pick("logger_pos", 2);
    answering(pressed("store"), pressing(QMessageBox::Ok));
    QCOMPARE(told_, QStringList{"Error|Il programma nella tabella del datalogger già esiste."});
    QCOMPARE(beeps_, 2);
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-,01,02"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("008"));
}

void PlanScreenTest::a_key_in_the_position_list_stores_and_types_nothing() {
    start_alone();
    auto* list = find<QComboBox>("logger_pos");
    pick("logger_pos", 6);
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("-"));
    list->setFocus();
    QTest::keyClicks(list, QStringLiteral("3"));
    QCOMPARE(list->currentText(), QStringLiteral("05"));
    QCOMPARE(stored(QStringLiteral("logger_pos")), QStringLiteral("05"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("000"));
}

void PlanScreenTest::lists_take_their_own_entries_alone() {
    start_alone();
    for (const char* name : {"diseqc_cmd", "diseqc_cmd2", "k22_state", "lnb_state"}) {
        auto* list = find<QComboBox>(name);
        list->setFocus();
        QTest::keyClicks(list, QStringLiteral("DON1N"));
        QWheelEvent wheel({5, 5}, list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(list, &wheel);
        QCOMPARE(list->currentIndex(), 0);
    }
    pick("diseqc_cmd", 73);
    pick("lnb_state", 1);
    press("store");
    QCOMPARE(stored(QStringLiteral("diseqc_cmd || ' ' || diseqc_cmd2 || ' ' || lnb_volt")),
             QStringLiteral("73 0 1"));
}

void PlanScreenTest::boxes_are_checked_on_enter_and_on_leaving() {
    start_alone();
    leave("prog_num", QStringLiteral("150"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("099"));
    leave("prog_num", QStringLiteral("-3"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("000"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
    click("ol_opt_0");
    leave("sat_freq_txt", QStringLiteral("500"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("920.0"));
    enter("sat_freq_txt", QStringLiteral("2500"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("2150.0"));
    click("cmd_dig");
    QVERIFY(find<QWidget>("dig_opt")->isVisible());
    QVERIFY(find<QWidget>("dig_opt")->isEnabled());
    leave("srqpsk_txt", QStringLiteral("60000"));
    QCOMPARE(text_of("srqpsk_txt"), QStringLiteral("45000"));
    enter("srqpsk_txt", QStringLiteral("800"));
    QCOMPARE(text_of("srqpsk_txt"), QStringLiteral("1500"));
    enter("chbw_txt", QStringLiteral("45"));
    QCOMPARE(text_of("chbw_txt"), QStringLiteral("40"));
    type("chbw_txt", QStringLiteral("45"));
    auto* other = find<QLineEdit>("srqpsk_txt");
    QTest::mouseClick(other, Qt::LeftButton);
    QCOMPARE(text_of("chbw_txt"), QStringLiteral("36"));
    click("cmd_dig");
    QVERIFY(!find<QWidget>("dig_opt")->isVisible());
    QVERIFY(!find<QWidget>("dig_opt")->isEnabled());
}

void PlanScreenTest::a_menu_in_front_of_a_box_is_no_leaving() {
    start_alone();
    type("prog_num", QStringLiteral("150"));
    find<QMenu>("cmdmenu")->popup(screen_->mapToGlobal(QPoint(5, 5)));
    find<QMenu>("cmdmenu")->close();
    QCOMPARE(text_of("prog_num"), QStringLiteral("150"));
}

void PlanScreenTest::the_oscillator_is_edited_stored_and_bounds_the_frequency() {
    start_alone();
    type_oscillator(QStringLiteral("12345678"), false);
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("123456"));
    type_oscillator(QStringLiteral("13000"));
    QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("12000.0"));
    type_oscillator(QStringLiteral("2000"));
    QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("3070.0"));
    QCOMPARE(find<QComboBox>("ol_optval")->itemText(0), QStringLiteral("3070"));
    type_oscillator(QStringLiteral("9750"));
    enter("sat_freq_txt", QStringLiteral("10000"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("10670"));
    enter("sat_freq_txt", QStringLiteral("12500"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("11900"));
    // Leaving the oscillator checks the frequency against what stands there.
    type_oscillator(QStringLiteral("5150"), false);
    QTest::keyClick(find<QComboBox>("ol_optval"), Qt::Key_Tab);
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("4230"));
    click("ol_opt_0");
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("2150.0"));
    QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("9750.0"));
}

void PlanScreenTest::each_oscillator_has_its_own_place() {
    start_alone();
    type_oscillator(QStringLiteral("9750"));
    pick("ol_optval", 1);
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QString());
    // An equal entry elsewhere is not taken instead.
    type_oscillator(QStringLiteral("9750"));
    QCOMPARE(find<QComboBox>("ol_optval")->currentIndex(), 1);
    type_oscillator(QStringLiteral("10600"));
    QCOMPARE(stored(QStringLiteral("loc_osc1 || ' ' || loc_osc2 || ' ' || loc_osc0")),
             QStringLiteral("9750.0 10600.0 1"));
    enter("sat_freq_txt", QStringLiteral("12000"));
    enter("prog_num", QStringLiteral("2"));
    pick("ol_optval", 0);
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("11900"));
    press("store");
    press("previous_prog");
    QCOMPARE(find<QComboBox>("ol_optval")->currentIndex(), 1);
    press("store");
    QCOMPARE(stored(QStringLiteral("loc_osc1 || ' ' || loc_osc2 || ' ' || loc_osc0")),
             QStringLiteral("9750.0 10600.0 1,9750.0 10600.0 0"));
}

void PlanScreenTest::without_an_oscillator_the_frequency_stays_empty() {
    start_alone();
    press("store");
    leave("sat_freq_txt", QString());
    QCOMPARE(text_of("sat_freq_txt"), QString());
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-"));
    QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("-"));
    QCOMPARE(stored(QStringLiteral("satchbw")), QStringLiteral("1.0"));
}

void PlanScreenTest::storing_checks_the_limits_in_the_unit_that_is_chosen() {
    start_alone();
    press("monitor");
    QVERIFY(find<QWidget>("monitor_opt")->isVisible());
    press("cmdlev_1");
    QCOMPARE(program_state().unit_index, int(kDbmv));
    QVERIFY(find<QAction>("cmdlev_1")->isChecked());
    QVERIFY(!find<QAction>("cmdlev_0")->isChecked());
    press("cmdlev_1");
    QVERIFY(find<QAction>("cmdlev_1")->isChecked());
    type("lev_mintxt", QStringLiteral("-50"));
    type("lev_maxtxt", QStringLiteral("70"));
    type("cn_mintxt", QStringLiteral("45"));
    type("cn_maxtxt", QStringLiteral("30"));
    type("chber_mintxt", QStringLiteral("0.05"));
    type("chber_maxtxt", QStringLiteral("0.1"));
    type("mer_mintxt", QStringLiteral("10"));
    type("mer_maxtxt", QStringLiteral("5"));
    click("monitor_state");
    press("store");
    QCOMPARE(text_of("lev_mintxt"), QStringLiteral("-40"));
    QCOMPARE(stored(QStringLiteral("lev_min || ' ' || lev_max || ' ' || noise_min || ' ' || "
                                   "noise_max || ' ' || chber_min || ' ' || chber_max || ' ' "
                                   "|| mer_min || ' ' || mer_max || ' ' || monitor_state")),
             QStringLiteral("-40 60 1 30 3E-2 0.1 10 11 1"));
    press("monitor");
    QVERIFY(!find<QWidget>("monitor_opt")->isVisible());
}

void PlanScreenTest::the_unit_chosen_elsewhere_shows_when_the_screen_comes_to_the_front() {
    start_alone();
    window().open_screen(QStringLiteral("setport"));
    program_state().unit_index = kDbm;
    window().open_screen(QStringLiteral("program"));
    QVERIFY(find<QAction>("cmdlev_2")->isChecked());
}

void PlanScreenTest::the_exit_entry_closes_the_screen() {
    start_alone();
    find<QLineEdit>("prog_num")->setFocus();
    press("cmdexit");
    QTRY_VERIFY(!window().screen_of(QStringLiteral("program")));
}

void PlanScreenTest::user_switches_fill_a_list() {
    start_alone();
    QSqlQuery(QStringLiteral("UPDATE configurazione SET user_sc0 = 'A', user_sc3 = 'D'"),
              program().database().connection());
    db::Recordset row = program().database().of_plan(QStringLiteral("configurazione"), "PLAN 1");
    QListWidget list;
    list.addItem(QStringLiteral("old"));
    associa_user_sc(&list, row);
    QCOMPARE(list.count(), 4);
    QCOMPARE(list.item(0)->text() + list.item(1)->text() + list.item(3)->text(), "AD");
}

}  // namespace m47::plans
