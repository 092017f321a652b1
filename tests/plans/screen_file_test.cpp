// SPDX-License-Identifier: GPL-3.0-or-later
// Whole plans, and files that take nothing.
#include "import_words.h"
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::a_read_only_file_is_told_once_and_nothing_is_half_written() {
    start_alone();
    enter("prog_num", QStringLiteral("7"));
    QSqlQuery(QStringLiteral("PRAGMA query_only = 1"), program().database().connection());
    for (const char* key : {"store", "store_new"}) {
        type("prog_num", QStringLiteral("9"));
        answering(pressed(key), pressing(QMessageBox::Ok));
        QCOMPARE(told_.size(), 1);
        QVERIFY2(told_[0].contains(QStringLiteral("cannot be written")), qPrintable(told_[0]));
        told_.clear();
    }
    answering(pressed("new"), [this](QWidget* front) {
        QTimer::singleShot(50, this, [this] {
            note(QApplication::activeModalWidget());
            pressing(QMessageBox::Ok)(QApplication::activeModalWidget());
        });
        typing(QStringLiteral("C"))(front);
    });
    QVERIFY(told_.constLast().contains(QStringLiteral("cannot be written")));
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
}

void PlanScreenTest::a_number_meant_for_a_new_program_renumbers_none_after_a_fault() {
    start_alone();
    type_two_programs();
    const QString numbers = stored(QStringLiteral("pg_num"));
    const QString shown = text_of("prog_num");
    type("sat_freq_txt", QStringLiteral("1700"));
    change_file(QStringLiteral("PRAGMA query_only = 1"));
    answering([this] { enter("prog_num", QStringLiteral("10")); }, pressing(QMessageBox::Ok));
    QCOMPARE(text_of("prog_num"), shown);
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1700"));
    change_file(QStringLiteral("PRAGMA query_only = 0"));
    press("store");
    QCOMPARE(stored(QStringLiteral("pg_num")), numbers);
}

void PlanScreenTest::thirty_programs_are_typed_in_edited_and_uploaded_in_each_way() {
    start_on_virtual_line();
    new_plan(QStringLiteral("thirty"));
    click("ol_opt_0");
    click("cmd_dig");
    pick("lnb_state", 1);
    pick("diseqc_cmd", 73);
    type("srqpsk_txt", QStringLiteral("27500"));
    type("chbw_txt", QStringLiteral("36"));
    type("sat_freq_txt", QStringLiteral("1000"));
    type("prog_num", QStringLiteral("10"));
    press("store");
    click("logger_state");
    for (int k = 1; k < 30; ++k) {
        type("sat_freq_txt", QString::number(1000 + 30 * k));
        enter("prog_num", QString::number(10 + k));
    }
    press("previous_prog");
    type("sat_freq_txt", QStringLiteral("2000.5"));
    click("logger_state");
    pick("lnb_state", 0);
    press("store");
    QCOMPARE(stored(QStringLiteral("pg_num")).split(u',').size(), 30);
    QCOMPARE(stored(QStringLiteral("frequenza")).split(u',').mid(27),
             QStringList({"1810.0", "2000.5", "1870.0"}));
    QCOMPARE(stored(QStringLiteral("logger_pos")).split(u',').constLast(), QStringLiteral("29"));

    QStringList kept;
    QStringList lines;
    for (int k = 0; k < 30; ++k) {
        const bool edited = k == 28;
        const QString mhz = edited ? QStringLiteral("2000.5")
                                   : QString::number(1000 + 30 * k) + QStringLiteral(".0");
        kept += QStringLiteral(
                    "%1 freq %2 if %2 osc 0A 00000 lnb %3 volt 13 tone off mode qpsk "
                    "symbolrate 27500 chbw 36 diseqc 73 unit dBuV atten 6")
                    .arg(QString::number(10 + k), mhz,
                         edited ? QStringLiteral("off") : QStringLiteral("on"));
        if (k > 0 && !edited)
            lines += QStringLiteral("%1 %2 01").arg(k, 2, 10, QChar(u'0')).arg(10 + k);
    }
    const QStringList others = meter_keeps(QStringLiteral("program"));
    for (const char* key : {"accoda", "sostituisci", "nuovo"}) {
        answering(pressed(key), pressing(QMessageBox::Yes));
        const bool all = qstrcmp(key, "nuovo") == 0;
        QCOMPARE(meter_keeps(QStringLiteral("program")), all ? kept : others + kept);
        QCOMPARE(meter_keeps(QStringLiteral("logger-line")), lines);
        QVERIFY(progress()->toolTip().isEmpty());
    }
}

void PlanScreenTest::transponders_of_a_scan_table_are_imported_and_uploaded() {
    start_with_meter();
    new_plan(QStringLiteral("hot bird"));
    const QString table = file_with(
        QStringLiteral("scan"),
        "# freq pol sr fec\n\n[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 10719000\n"
        "\tPOLARIZATION = VERTICAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = 3/4\n"
        "\tINVERSION = AUTO\n\n[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 10723000\n"
        "\tPOLARIZATION = HORIZONTAL\n\tSYMBOL_RATE = 29900000\n\tINNER_FEC = 3/4\n\n"
        "[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS\n\tFREQUENCY = 11727000\n"
        "\tPOLARIZATION = VERTICAL\n\tSYMBOL_RATE = 27500000\n\tINNER_FEC = 3/4\n");
    answering_each(pressed("cmdimport"), {choosing(table), accepting()});
    answering(pressed("nuovo"), pressing(QMessageBox::Yes));
    QCOMPARE(
        meter_keeps(QStringLiteral("program")),
        QStringList(
            {"00 freq 10719 if 969.0 osc 1A 09750 lnb on volt 13 tone off mode qpsk symbolrate "
             "27500 chbw 36 diseqc 73 unit dBuV atten 6",
             "01 freq 10723 if 973.0 osc 1A 09750 lnb on volt 18 tone off mode qpsk symbolrate "
             "29900 chbw 36 diseqc 73 unit dBuV atten 6",
             "02 freq 11727 if 1127.0 osc 2A 10600 lnb on volt 13 tone on mode qpsk symbolrate "
             "27500 chbw 36 diseqc 73 unit dBuV atten 6"}));
    QCOMPARE(meter_keeps(QStringLiteral("logger-line")), QStringList());
}

namespace {

QString cell_of(QWidget* front, int row, int column) {
    return front->findChild<QTableWidget*>(QStringLiteral("import_table"))
        ->item(row, column)
        ->text();
}

QString summary_of(QWidget* front) {
    return front->findChild<QLabel*>(QStringLiteral("import_summary"))->text();
}

void tick(QWidget* front, int row, bool wanted) {
    front->findChild<QTableWidget*>(QStringLiteral("import_table"))
        ->item(row, 0)
        ->setCheckState(wanted ? Qt::Checked : Qt::Unchecked);
}

}  // namespace

void PlanScreenTest::what_is_left_out_is_told_in_one_line() {
    ImportCandidate candidate;
    candidate.beyond_qpsk = true;
    ImportRow row;
    row.problem = ImportProblem::no_number;
    Texts texts;
    texts.language = kEnglish;
    QCOMPARE(import_cells(candidate, row, texts).last(),
             QString("Left out: the plan is full; DVB-S2 or 8PSK: the meter measures QPSK, of this "
                     "the level alone"));
    candidate.beyond_qpsk = false;
    QCOMPARE(import_cells(candidate, row, texts).last(), QString("Left out: the plan is full."));
}

void PlanScreenTest::the_rows_of_an_import_are_chosen() {
    start_alone();
    new_plan(QStringLiteral("B"));
    const QString table = file_with(
        QStringLiteral("scan"),
        "[Sky UK]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 10719000\nPOLARIZATION = VERTICAL\n"
        "SYMBOL_RATE = 27500000\n[Rai]\nDELIVERY_SYSTEM = DVBS2\nFREQUENCY = 11766000\n"
        "POLARIZATION = HORIZONTAL\nSYMBOL_RATE = 29900000\nSTREAM_ID = 1\n"
        "[Rai]\nDELIVERY_SYSTEM = DVBS2\nFREQUENCY = 11766000\n"
        "POLARIZATION = HORIZONTAL\nSYMBOL_RATE = 29900000\nSTREAM_ID = 2\n"
        "[X]\nDELIVERY_SYSTEM = DVBS\nFREQUENCY = 11800000\nPOLARIZATION = LEFT\n"
        "SYMBOL_RATE = 27x\n[CHANNEL]\nDELIVERY_SYSTEM = DVBT\nFREQUENCY = 594000000\n");
    QStringList rows;
    answering_each(pressed("cmdimport"), {choosing(table), [&](QWidget* front) {
                                              for (int row = 0; row < 3; ++row) {
                                                  QStringList cells;
                                                  for (int column = 1; column < 9; ++column)
                                                      cells += cell_of(front, row, column);
                                                  rows += cells.join(u'|');
                                              }
                                              rows += summary_of(front);
                                              tick(front, 0, false);
                                              rows += cell_of(front, 0, 8);
                                              rows += cell_of(front, 1, 1);
                                              rows += summary_of(front).section(u'\n', 0, 0);
                                              choose(front, "import_none");
                                              rows += summary_of(front).section(u'\n', 0, 0);
                                              choose(front, "import_all");
                                              // A selection is ticked as one.
                                              front->findChild<QTableWidget*>()->selectAll();
                                              tick(front, 0, false);
                                              rows += summary_of(front).section(u'\n', 0, 0);
                                              front->findChild<QTableWidget*>()->clearSelection();
                                              tick(front, 1, true);
                                              accepting()(front);
                                          }});
    QCOMPARE(rows,
             QStringList({
                 "000|Sky UK|10719|V|OFF|9750|27500|Added",
                 "001|Rai|11766|H|ON|10600|29900|Added; 2 streams of one transponder; DVB-S2 or "
                 "8PSK: the meter measures QPSK, of this the level alone",
                 "|X|11800|L|OFF|||Left out: not understood. SYMBOL_RATE: 27X",
                 "Programs that will be added: 2 of 3.\nThey replace the empty program of the new "
                 "plan.\n"
                 "Terrestrial and cable channels left out: 1.",
                 "Not ticked.",
                 "000",
                 "Programs that will be added: 1 of 3.",
                 "Programs that will be added: 0 of 3.",
                 "Programs that will be added: 0 of 3.",
             }));
    QCOMPARE(stored(QStringLiteral("frequenza")), QStringLiteral("11766.0"));
}

/// "/" would be a folder that is not there, and "." the kind of the file.
void PlanScreenTest::a_plan_of_any_name_is_proposed_as_a_file() {
    start_alone();
    new_plan(QStringLiteral("13.0E/<B>"));
    QString proposed;
    answering(pressed("cmdexport"), [&](QWidget* front) {
        proposed = front->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text();
        qobject_cast<QDialog*>(front)->reject();
    });
    QCOMPARE(proposed, QStringLiteral("13-0E-<B>"));
}

void PlanScreenTest::an_exported_plan_comes_back_edited() {
    start_alone();
    click("ol_opt_0");
    type("sat_freq_txt", QStringLiteral("1234.5"));
    type("prog_num", QStringLiteral("7"));
    press("store");
    enter("prog_num", QStringLiteral("8"));
    const QString path = in_folder(QStringLiteral("out.tsv"));
    answering(pressed("cmdexport"), choosing(path));
    const QString numbers = stored(QStringLiteral("pg_num"));
    QByteArray text = content_of(path);
    text.replace(text.indexOf("1234.5"), 6, "1300.5");
    const QString edited = file_with(QStringLiteral("edited.tsv"), text);
    QStringList told;
    answering_each(
        pressed("cmdimport"),
        {choosing(edited), [&](QWidget* front) {
             told += cell_of(front, 0, 8);
             front->findChild<QCheckBox*>(QStringLiteral("import_replace"))->setChecked(true);
             told += cell_of(front, 0, 8);
             told += cell_of(front, 1, 8);
             told += summary_of(front);
             accepting()(front);
         }});
    QCOMPARE(told,
             QStringList({"The Programme in the data base already exist.",
                          "Replaces the program of the plan: frequenza: 1234.5 → 1300.5",
                          "As in the plan.",
                          "Programs that will be added: 0 of 2.\nPrograms of the plan that will be "
                          "replaced: 1."}));
    QCOMPARE(stored(QStringLiteral("pg_num")), numbers);
    QCOMPARE(stored(QStringLiteral("frequenza")).section(u',', 0, 0), QStringLiteral("1300.5"));
}

void PlanScreenTest::a_table_without_satellites_is_told_once() {
    start_alone();
    const QString table =
        file_with(QStringLiteral("roof"), "T 594000000 8MHz\nC 121000000 6900000\n");
    answering_each(pressed("cmdimport"), {choosing(table), pressing(QMessageBox::Ok)});
    QVERIFY2(told_.constLast().contains(
                 QStringLiteral("roof is a table of terrestrial or cable channels.")),
             qPrintable(told_.constLast()));
}

void PlanScreenTest::without_a_plan_one_message_says_so() {
    start_alone(kEnglish);
    for (const char* table : {"gruppo", "programmi", "configurazione"})
        change_file(QStringLiteral("DELETE FROM %1").arg(QLatin1String(table)));
    screen_->database_changed();
    QCOMPARE(text_of("grp_name"), QString());
    for (const char* key : {"store", "store_new", "accoda", "sostituisci", "nuovo", "cmdimport",
                            "cmdexport", "cmdcopyprog", "cmdcopyplan"}) {
        answering(pressed(key), pressing(QMessageBox::Ok));
        QCOMPARE(told_, QStringList{"Error|There is no plan: make one first."});
        told_.clear();
    }
    answering([this] { type_oscillator(QStringLiteral("9750")); }, pressing(QMessageBox::Ok));
    answering([this] { enter("prog_num", QStringLiteral("7")); }, pressing(QMessageBox::Ok));
    QCOMPARE(told_, QStringList({"Error|There is no plan: make one first.",
                                 "Error|There is no plan: make one first."}));
    for (const char* key : {"delete", "programma_delete", "previous_prog", "next"}) press(key);
    for (const char* table : {"gruppo", "programmi", "configurazione"}) {
        QSqlQuery rows(QStringLiteral("SELECT count(*) FROM %1").arg(QLatin1String(table)),
                       program().database().connection());
        QVERIFY(rows.next());
        QCOMPARE(rows.value(0).toInt(), 0);
    }
    new_plan(QStringLiteral("b"));
    enter("prog_num", QStringLiteral("7"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-,007"));
}

void PlanScreenTest::a_plan_without_programs_or_oscillators_can_still_be_filled() {
    start_alone();
    change_file(QStringLiteral("DELETE FROM programmi"));
    change_file(QStringLiteral("DELETE FROM configurazione"));
    screen_->database_changed();
    answering(pressed("store"), pressing(QMessageBox::Ok));
    QCOMPARE(told_, QStringList{"Error|The plan has no program: make one first."});
    enter("prog_num", QStringLiteral("7"));
    type_oscillator(QStringLiteral("9750"));
    QCOMPARE(stored(QStringLiteral("pg_num || ' ' || loc_osc1")), QStringLiteral("007 9750.0"));
}

}  // namespace m47::plans
