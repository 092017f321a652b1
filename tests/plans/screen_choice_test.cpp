// SPDX-License-Identifier: GPL-3.0-or-later
// What is chosen against the behaviour as ever, and uploads that are refused.
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::limits_stay_in_their_unit_where_that_is_chosen_data() {
    QTest::addColumn<bool>("keep");
    QTest::addColumn<QString>("untouched");
    QTest::addColumn<QString>("typed_before");
    QTest::newRow("as ever") << false << "10 11"
                             << "10 11";
    QTest::newRow("kept") << true << "30 90"
                          << "25 120";
}

void PlanScreenTest::limits_stay_in_their_unit_where_that_is_chosen() {
    QFETCH(bool, keep);
    start_alone();
    program_state().corrected.keep_unit = keep;
    press("monitor");
    click("ol_opt_0");
    const auto limits = [this] { return stored(QStringLiteral("lev_min || ' ' || lev_max")); };
    // Without limits there is nothing to keep.
    press("store");
    QCOMPARE(limits(), QStringLiteral("20 21"));
    type("lev_mintxt", QStringLiteral("30"));
    type("lev_maxtxt", QStringLiteral("90"));
    press("store");
    QCOMPARE(limits(), QStringLiteral("30 90"));
    // The meter turned out to measure in dBm.
    program_state().unit_index = kDbm;
    answering(pressed("accoda"), pressing(QMessageBox::No));
    QTEST(limits(), "untouched");
    // What was typed before the unit was changed is of the unit before.
    press("cmdlev_0");
    type("lev_mintxt", QStringLiteral("25"));
    type("lev_maxtxt", QStringLiteral("130"));
    press("cmdlev_2");
    press("store");
    QTEST(limits(), "typed_before");
    // What is typed now is checked in the unit of now.
    type("lev_mintxt", QStringLiteral("-100"));
    type("lev_maxtxt", QStringLiteral("-20"));
    press("store");
    QCOMPARE(limits(), QStringLiteral("-89 -20"));
}

void PlanScreenTest::what_the_behaviour_as_ever_costs_is_told_once() {
    start_on_patient_line();
    const auto told = [this] {
        auto* notice = window().findChild<QLabel*>(QStringLiteral("corrected_notice"));
        const QString text = notice->text();
        notice->clear();
        return text;
    };
    type_two_programs_of_an_oscillator();
    press("monitor");
    type("lev_mintxt", QStringLiteral("30"));
    type("lev_maxtxt", QStringLiteral("90"));
    press("store");
    QCOMPARE(told(), QString());
    program_state().unit_index = kDbm;
    press("store");
    QCOMPARE(told(), QStringLiteral("Level limits changed to fit the unit: type them again"));
    answering([this] { enter("prog_num", QStringLiteral("1")); }, pressing(QMessageBox::Ok));
    QCOMPARE(told(), QStringLiteral("The refused program has left the boxes: put it back below"));
    type_oscillator(QStringLiteral("9760"));
    QCOMPARE(told(), QString());
    type_oscillator(QStringLiteral("5150"));
    QCOMPARE(told(), QStringLiteral("Other programs are out of range of the new oscillator: "
                                    "store each of them"));
    type_oscillator(QStringLiteral("9750"));
    QCOMPARE(told(), QString());
    const auto upload = [this] { answering(pressed("accoda"), pressing(QMessageBox::Yes)); };
    upload();
    QCOMPARE(told(), QString());
    change_file(QStringLiteral("UPDATE programmi SET diseqc_cmd = NULL WHERE pg_num = '002'"));
    upload();
    QCOMPARE(told(), QStringLiteral("A program without DiSEqC was sent with TONE BURST: choose "
                                    "NONE"));
    new_plan(QStringLiteral("B"));
    enter("prog_num", QStringLiteral("7"));
    upload();
    QCOMPARE(told(), QStringLiteral("A program without frequency was sent with zeros: type it or "
                                    "delete the program"));
    upload();
    QCOMPARE(told(), QString());
}

void PlanScreenTest::imported_limits_stay_in_their_unit_where_that_is_chosen() {
    start_alone();
    program_state().unit_index = kDbm;
    const QString file =
        file_with(QStringLiteral("some.csv"), "pg_num,frequenza,lev_min,lev_max\n1,1000,30,90\n");
    const auto limits_after = [&](const char* plan) {
        new_plan(QString::fromLatin1(plan));
        answering_each(pressed("cmdimport"), {choosing(file), accepting()});
        return stored(QStringLiteral("lev_min || ' ' || lev_max"));
    };
    QCOMPARE(limits_after("B"), QStringLiteral("10 11"));
    program_state().corrected.keep_unit = true;
    QCOMPARE(limits_after("C"), QStringLiteral("30 90"));
}

void PlanScreenTest::empty_programs_are_not_uploaded_where_that_is_chosen() {
    start_on_patient_line();
    click("ol_opt_0");
    click("cmd_dig");
    type("sat_freq_txt", QStringLiteral("1100"));
    type("chbw_txt", QStringLiteral("8"));
    enter("prog_num", QStringLiteral("7"));
    const auto sent = [this] {
        answering(pressed("accoda"), pressing(QMessageBox::Yes));
        return line_->take_commands().filter(QRegularExpression("^(CHBW|PROGRAM|FREQ)"));
    };
    QCOMPARE(sent(),
             QStringList({"CHBW 08", "PROGRAM 00", "FREQ 00000", "PROGRAM 07", "FREQ 1100.0"}));
    program_state().corrected.skip_empty = true;
    QCOMPARE(sent(), QStringList({"CHBW 08", "PROGRAM 07", "FREQ 1100.0"}));
    // Shown is the empty one since the upload, which stays empty.
    QCOMPARE(text_of("prog_num"), QString());
    QCOMPARE(sent(), QStringList({"CHBW 08", "PROGRAM 07", "FREQ 1100.0"}));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
    // Once something is typed into it, it is a program.
    type("prog_num", QStringLiteral("8"));
    click("ol_opt_0");
    QCOMPARE(sent(),
             QStringList({"CHBW 01", "PROGRAM 08", "FREQ 0920.0", "PROGRAM 07", "FREQ 1100.0"}));
}

void PlanScreenTest::a_plan_of_empty_programs_deletes_nothing_in_the_meter() {
    start_on_patient_line();
    program_state().corrected.skip_empty = true;
    told_.clear();
    answering(pressed("nuovo"), pressing(QMessageBox::Ok));
    QCOMPARE(told_, QStringList{"Error|The plan has no program: make one first."});
    QCOMPARE(line_->take_commands(), QStringList());
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
}

void PlanScreenTest::replacing_says_what_goes_and_no_is_the_default() {
    start_on_patient_line();
    line_->take_commands();
    const auto look = [](const QString& goes) {
        return [goes](QWidget* front) {
            const auto* box = qobject_cast<QMessageBox*>(front);
            QCOMPARE(box->text(), QStringLiteral("Replace with the new Plan of program\rDo you "
                                                 "want to continue?"));
            QCOMPARE(box->informativeText(), goes);
            QCOMPARE(box->defaultButton() == box->button(QMessageBox::No), !goes.isEmpty());
            QTest::keyClick(front, Qt::Key_Return);
        };
    };
    answering(pressed("nuovo"),
              look(QStringLiteral("This erases all programs of the meter, 00 to 99, and its whole "
                                  "logger table.")));
    QCOMPARE(line_->take_commands(), QStringList());
    // What erases nothing is asked as ever.
    answering(pressed("accoda"), [](QWidget* front) {
        auto* box = qobject_cast<QMessageBox*>(front);
        QCOMPARE(box->informativeText(), QString());
        box->button(QMessageBox::No)->click();
    });
}

void PlanScreenTest::replacing_keeps_the_table_first_where_that_is_chosen() {
    start_on_virtual_line();
    click("ol_opt_0");
    pick("diseqc_cmd", 73);
    program_state().corrected.keep_copy = true;
    const QDir backup(in_folder("backup"));
    const auto informed = [this](QMessageBox::StandardButton button) {
        QString said;
        answering(pressed("nuovo"), [&](QWidget* front) {
            auto* box = qobject_cast<QMessageBox*>(front);
            said = box->informativeText();
            box->button(button)->click();
        });
        return said;
    };
    line_->take_commands();
    const QString asked = informed(QMessageBox::No);
    QCOMPARE(line_->take_commands(), QStringList{"DATAPROGRAM?"});
    const QStringList kept = backup.entryList(QDir::Files);
    QCOMPARE(kept.size(), 1);
    QVERIFY2(asked.contains(kept[0]), qPrintable(asked));
    QVERIFY(!content_of(backup.filePath(kept[0])).isEmpty());
    informed(QMessageBox::Yes);
    const QStringList sent = line_->take_commands();
    QCOMPARE(sent.mid(0, 4),
             (QStringList{"DATAPROGRAM?", "MEASURE", "DELETE 00 99", "DATAPROGRAM *"}));
    const auto usual = line_->answer;
    line_->answer = [usual](const QByteArray& command) {
        return command == "DATAPROGRAM?" ? command + "\rInvalid Parameter(s)\rOK\r"
                                         : usual(command);
    };
    QVERIFY(informed(QMessageBox::No).contains(QStringLiteral("could not be read")));
    QCOMPARE(backup.entryList(QDir::Files).size(), 2);
}

void PlanScreenTest::a_refused_new_program_stays_where_that_is_chosen() {
    start_alone();
    type_two_programs();
    const auto refused = [this](const char* how) {
        type("sat_freq_txt", QStringLiteral("1700"));
        if (qstrcmp(how, "key") == 0) {
            type("prog_num", QStringLiteral("1"));
            answering(pressed("store_new"), pressing(QMessageBox::Ok));
        } else {
            answering([this] { enter("prog_num", QStringLiteral("1")); },
                      pressing(QMessageBox::Ok));
        }
    };
    refused("key");
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1002.0"));
    program_state().corrected.keep_new = true;
    for (const char* how : {"key", "enter"}) {
        refused(how);
        QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1700"));
    }
    enter("prog_num", QStringLiteral("3"));
    QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")),
             QStringLiteral("001 1001.0,002 1002.0,003 1700.0"));
}

void PlanScreenTest::a_new_oscillator_checks_every_program_where_that_is_chosen() {
    start_alone();
    type_two_programs_of_an_oscillator();
    pick("ol_optval", 1);
    type_oscillator(QStringLiteral("10600"));
    type("sat_freq_txt", QStringLiteral("12000"));
    press("store");
    pick("ol_optval", 0);
    type("sat_freq_txt", QStringLiteral("11000"));
    enter("prog_num", QStringLiteral("3"));
    const auto frequencies = [this] { return stored(QStringLiteral("frequenza")); };
    QCOMPARE(frequencies(), QStringLiteral("11000.0,12000.0,11000.0"));
    // As ever: the program on the screen alone.
    type_oscillator(QStringLiteral("5150"));
    QCOMPARE(frequencies(), QStringLiteral("11000.0,12000.0,4230.0"));
    type_oscillator(QStringLiteral("9750"));
    type("sat_freq_txt", QStringLiteral("11000"));
    press("store");
    program_state().corrected.check_all = true;
    type_oscillator(QStringLiteral("5150"));
    QCOMPARE(frequencies(), QStringLiteral("4230.0,12000.0,4230.0"));
    QCOMPARE(progress()->text(), QStringLiteral("Frequencies corrected, programs: 001, 003"));
    // The key does what Enter does.
    type_oscillator(QStringLiteral("9750"), false);
    press("store");
    QCOMPARE(frequencies(), QStringLiteral("10670.0,12000.0,10670.0"));
    press("previous_prog");
    press("previous_prog");
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("10670"));
}

void PlanScreenTest::an_empty_program_stays_empty_when_all_are_checked() {
    start_alone();
    enter("prog_num", QStringLiteral("7"));
    program_state().corrected.check_all = true;
    type_oscillator(QStringLiteral("9750"));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("-,10670.0"));
}

void PlanScreenTest::an_unset_diseqc_command_is_none_where_that_is_chosen() {
    start_on_patient_line();
    const auto shown = [this] {
        return find<QComboBox>("diseqc_cmd")->currentText() + u'|' +
               find<QComboBox>("diseqc_cmd2")->currentText();
    };
    const auto sent = [this] {
        answering(pressed("accoda"), pressing(QMessageBox::Yes));
        return line_->take_commands().filter(QStringLiteral("DISEQC"));
    };
    change_file(
        QStringLiteral("INSERT INTO programmi (nome, pg_num, frequenza, loc_osc) "
                       "VALUES ('PLAN 1', '007', 1100, 1)"));
    screen_->database_changed();
    QCOMPARE(shown(), QStringLiteral("TONE BURST|TONE BURST"));
    program_state().corrected.none_diseqc = true;
    press("next_prog");
    QCOMPARE(shown(), QStringLiteral("NONE|NONE"));
    press("previous_prog");
    QCOMPARE(shown(), QStringLiteral("NONE|NONE"));
    // The one that is not on the screen as well.
    QCOMPARE(sent(), QStringList({"DISEQC 73", "DISEQC 73"}));
    QCOMPARE(stored(QStringLiteral("coalesce(diseqc_cmd, 'unset')")), QStringLiteral("73,unset"));
    press("next_prog");
    find<QComboBox>("diseqc_cmd2")->setCurrentIndex(-1);
    press("store");
    QCOMPARE(stored(QStringLiteral("diseqc_cmd || ' ' || diseqc_cmd2")),
             QStringLiteral("73 73,73 73"));
    // What somebody has chosen stays chosen.
    pick("diseqc_cmd", 0);
    press("store");
    QCOMPARE(shown(), QStringLiteral("TONE BURST|NONE"));
    // The empty program of a new plan is still empty.
    program_state().corrected.skip_empty = true;
    new_plan(QStringLiteral("B"));
    QCOMPARE(shown(), QStringLiteral("NONE|NONE"));
    answering(pressed("accoda"), pressing(QMessageBox::Ok));
    QCOMPARE(told_.constLast(), QStringLiteral("Error|The plan has no program: make one "
                                               "first."));
}

void PlanScreenTest::plan_a_line() {
    click("ol_opt_0");
    type("prog_num", QStringLiteral("10"));
    pick("diseqc_cmd", 73);
    pick("logger_pos", 2);
    click("logger_state");
}

void PlanScreenTest::work_at_the_meter(const QString& command) {
    connect(screen_, &ProgramSet::upload_state, this, [this, command](const QString& text) {
        if (text.contains(QStringLiteral("answered"))) QVERIFY(program().link().send(command));
    });
}

QString PlanScreenTest::verified(const char* key, QStringList* rows) {
    QString said;
    answering_each(pressed(key), {pressing(QMessageBox::Yes), [&](QWidget* front) {
                                      said = front->findChild<QLabel*>("verify_summary")->text();
                                      auto* table = front->findChild<QTableWidget*>();
                                      for (int k = 0; rows && k < table->rowCount(); ++k) {
                                          QStringList cells;
                                          for (int c = 0; c < table->columnCount(); ++c)
                                              cells += table->item(k, c)->text();
                                          *rows += cells.join(u'|');
                                      }
                                      qobject_cast<QDialog*>(front)->accept();
                                  }});
    return said;
}

void PlanScreenTest::a_refused_table_is_not_as_planned() {
    start_on_virtual_line();
    click("ol_opt_0");
    pick("diseqc_cmd", 73);
    press("cmdverify");
    const auto usual = line_->answer;
    line_->answer = [usual](const QByteArray& command) {
        return command == "DATAPROGRAM?" ? command + "\rInvalid Parameter(s)\rOK\r"
                                         : usual(command);
    };
    QCOMPARE(verified("nuovo"),
             QStringLiteral("The meter did not tell its logger table: nothing was compared.\n"
                            "Active lines planned: 0."));
    QVERIFY(program().link().port_connected);
}

void PlanScreenTest::a_plan_without_lines_is_not_called_verified() {
    start_on_virtual_line();
    click("ol_opt_0");
    pick("diseqc_cmd", 73);
    press("cmdverify");
    QCOMPARE(verified("accoda"),
             QStringLiteral("The plan enters no program in the logger table: nothing was "
                            "compared.\nActive lines planned: 0. Lines read from the meter: 6, "
                            "active: 4."));
    QStringList rows;
    QCOMPARE(verified("sostituisci", &rows),
             QStringLiteral("The plan enters no program in the logger table, and none is active "
                            "there.\nActive lines planned: 0. Lines read from the meter: 6, "
                            "active: 0."));
    QCOMPARE(rows.constFirst(),
             QString::fromUtf8("01|program 01, inactive|program 01, inactive|✓"));
}

void PlanScreenTest::a_line_that_the_meter_lists_as_inactive_is_as_good_as_none() {
    start_on_virtual_line();
    plan_a_line();
    work_at_the_meter(QStringLiteral("DATAPROGRAM 05 10 00"));
    press("cmdverify");
    QStringList rows;
    QCOMPARE(verified("nuovo", &rows),
             QStringLiteral("The logger table is as planned.\nActive lines planned: 1. Lines "
                            "read from the meter: 2, active: 1."));
    QCOMPARE(rows, QStringList({QString::fromUtf8("01|program 10, active|program 10, active|✓"),
                                QString::fromUtf8("05|none|program 10, inactive|✓")}));
}

void PlanScreenTest::a_refused_upload_says_how_far_it_came() {
    start_with_meter({"--fault", "error", "--fault-on", "DISEQC"});
    type_three_programs();
    press("cmdverify");
    answering(pressed("accoda"), pressing(QMessageBox::Yes));
    const auto* summary = window().findChild<QLabel*>(QStringLiteral("plan_progress"));
    QCOMPARE(summary->text(), QStringLiteral("9 of 38 commands answered OK"));
    QVERIFY(summary->toolTip().startsWith(QStringLiteral("DISEQC 73\nLNB 01\n")));
    QVERIFY(!program().link().port_connected);
    QCOMPARE(new_commands().mid(9), QStringList({"DISEQC 73", "DISEQC 73", "DISEQC 73"}));
}

}  // namespace m47::plans
