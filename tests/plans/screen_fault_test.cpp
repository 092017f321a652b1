// SPDX-License-Identifier: GPL-3.0-or-later
// What failed or went, and what a box can hold.
#include "screen_test.h"

namespace m47::plans {

void PlanScreenTest::after_a_failed_store_the_next_one_overwrites_no_other_program() {
    start_alone();
    type_two_programs();
    // The second time round as well.
    for (int round = 0; round < 2; ++round) {
        elsewhere(QStringLiteral("DELETE FROM programmi WHERE pg_num = '002'"));
        type("sat_freq_txt", QStringLiteral("1500"));
        told_.clear();
        answering(pressed("store"), pressing(QMessageBox::Ok));
        QCOMPARE(told_,
                 QStringList{"Error|Another program has deleted what was shown here. Nothing "
                             "was stored; the screen shows what is there now."});
        QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
        QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1001.0"));
        press("store");
        QCOMPARE(stored(QStringLiteral("pg_num || ' ' || frequenza")),
                 QStringLiteral("001 1001.0"));
        enter("prog_num", QStringLiteral("2"));
    }
}

void PlanScreenTest::a_program_deleted_elsewhere_is_not_deleted_twice() {
    start_alone();
    type_two_programs();
    enter("prog_num", QStringLiteral("3"));
    elsewhere(QStringLiteral("DELETE FROM programmi WHERE pg_num = '003'"));
    answering_each(pressed("programma_delete"),
                   {pressing(QMessageBox::Ok), pressing(QMessageBox::Ok)});
    QVERIFY2(told_.constLast().startsWith(QStringLiteral("Error|Another program")),
             qPrintable(told_.constLast()));
    QCOMPARE(text_of("prog_num"), QStringLiteral("001"));
    // The last one that is there cannot be deleted, however many there were.
    elsewhere(QStringLiteral("DELETE FROM programmi WHERE pg_num = '001'"));
    press("programma_delete");
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("002"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
}

void PlanScreenTest::a_plan_deleted_elsewhere_is_named_and_another_one_shown() {
    start_alone();
    new_plan(QStringLiteral("B"));
    for (const char* table : {"gruppo", "programmi", "configurazione"})
        elsewhere(QStringLiteral("DELETE FROM %1 WHERE nome = 'B'").arg(QLatin1String(table)));
    type("prog_num", QStringLiteral("7"));
    told_.clear();
    answering(pressed("store"), pressing(QMessageBox::Ok));
    QCOMPARE(told_, QStringList{"Error|The plan B is gone: another program has deleted it."});
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    QCOMPARE(text_of("prog_num"), QString());
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
}

void PlanScreenTest::a_move_that_failed_leaves_plan_and_program_together() {
    start_alone();
    new_plan(QStringLiteral("B"));
    press("previous");
    type_two_programs();
    elsewhere(QStringLiteral("ALTER TABLE configurazione RENAME TO away"));
    answering(pressed("next"), pressing(QMessageBox::Ok));
    elsewhere(QStringLiteral("ALTER TABLE away RENAME TO configurazione"));
    QCOMPARE(text_of("grp_name"), QStringLiteral("PLAN 1"));
    QCOMPARE(text_of("prog_num"), QStringLiteral("002"));
    press("store");
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("001,002"));
    press("next");
    QCOMPARE(text_of("grp_name"), QStringLiteral("B"));
    QCOMPARE(stored(QStringLiteral("pg_num")), QStringLiteral("-"));
}

void PlanScreenTest::an_oscillator_entry_that_does_not_exist_erases_none_data() {
    QTest::addColumn<int>("entry");
    QTest::newRow("behind the last") << 4;
    QTest::newRow("far behind") << 7;
    QTest::newRow("before the first") << -1;
}

void PlanScreenTest::an_oscillator_entry_that_does_not_exist_erases_none() {
    QFETCH(int, entry);
    start_alone();
    change_file(QStringLiteral("UPDATE configurazione SET loc_osc1 = 9750, loc_osc2 = 10600"));
    change_file(QStringLiteral("UPDATE programmi SET pg_num = '007', frequenza = 11000, "
                               "loc_osc = 0, satchbw = 36, loc_osc0 = %1")
                    .arg(entry));
    screen_->database_changed();
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("9750"));
    // An upload stores first as well.
    press("store");
    answering(pressed("accoda"), pressing(QMessageBox::No));
    QCOMPARE(stored(QStringLiteral("loc_osc1 || ' ' || loc_osc2 || ' ' || loc_osc0")),
             QStringLiteral("9750.0 10600.0 0"));
}

void PlanScreenTest::what_the_box_shows_is_what_is_stored_data() {
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("kept");
    QTest::newRow("decimal comma")
        << QByteArray("sat_freq_txt") << "1500,5" << QByteArray("frequenza") << "1500.5";
    QTest::newRow("letters behind")
        << QByteArray("sat_freq_txt") << "1234abc" << QByteArray("frequenza") << "1234.0";
    QTest::newRow("two decimals") << QByteArray("sat_freq_txt") << "1234.56"
                                  << QByteArray("frequenza") << "1234.6";
    QTest::newRow("symbol rate") << QByteArray("srqpsk_txt") << "27500abc"
                                 << QByteArray("qpsk_symbolrate") << "27500";
    QTest::newRow("symbol rate, comma")
        << QByteArray("srqpsk_txt") << "27500,5" << QByteArray("qpsk_symbolrate") << "27500.5";
    QTest::newRow("level, comma") << QByteArray("lev_mintxt") << "45,5" << QByteArray("lev_min")
                                  << "45.5";
    QTest::newRow("level, unit") << QByteArray("lev_maxtxt") << "75 dBuV" << QByteArray("lev_max")
                                 << "75";
    QTest::newRow("noise") << QByteArray("cn_maxtxt") << "30dB" << QByteArray("noise_max") << "30";
    QTest::newRow("exponent") << QByteArray("chber_mintxt") << "1E-7" << QByteArray("chber_min")
                              << "1E-7";
    QTest::newRow("no number") << QByteArray("chber_mintxt") << "x" << QByteArray("chber_min")
                               << "0";
    QTest::newRow("MER") << QByteArray("mer_maxtxt") << "20,25" << QByteArray("mer_max") << "20.25";
}

void PlanScreenTest::what_the_box_shows_is_what_is_stored() {
    QFETCH(QByteArray, box);
    QFETCH(QString, typed);
    QFETCH(QByteArray, field);
    QFETCH(QString, kept);
    start_alone();
    press("monitor");
    click("cmd_dig");
    click("ol_opt_0");
    type(box.constData(), typed);
    press("store");
    QCOMPARE(stored(QString::fromLatin1(field)), kept);
    QCOMPARE(text_of(box.constData()), kept);
    press("next_prog");
    QCOMPARE(text_of(box.constData()), kept);
}

void PlanScreenTest::a_number_with_letters_behind_is_cut_on_leaving() {
    start_alone();
    click("cmd_dig");
    click("ol_opt_0");
    leave("sat_freq_txt", QStringLiteral("1234abc"));
    QCOMPARE(text_of("sat_freq_txt"), QStringLiteral("1234"));
    leave("srqpsk_txt", QStringLiteral("27500abc"));
    QCOMPARE(text_of("srqpsk_txt"), QStringLiteral("27500"));
}

void PlanScreenTest::an_oscillator_typed_with_a_comma_is_read_whole() {
    start_alone();
    type_oscillator(QStringLiteral("9750,5"));
    QCOMPARE(stored(QStringLiteral("loc_osc1")), QStringLiteral("9750.5"));
    QCOMPARE(find<QComboBox>("ol_optval")->currentText(), QStringLiteral("9750.5"));
}

void PlanScreenTest::a_plan_name_is_plain_text_in_every_box() {
    start_alone();
    new_plan(QStringLiteral("<b>x</b>"));
    QCOMPARE(text_of("grp_name"), QStringLiteral("<B>X</B>"));
    const auto plainly = [](QMessageBox::StandardButton button) {
        return [button](QWidget* front) {
            const Qt::TextFormat format = qobject_cast<QMessageBox*>(front)->textFormat();
            pressing(button)(front);
            QCOMPARE(format, Qt::PlainText);
        };
    };
    told_.clear();
    answering(pressed("delete"), plainly(QMessageBox::Cancel));
    QCOMPARE(told_, QStringList{"VKDM47|Remove program: <B>X</B>"});
    answering_each(pressed("cmdcopyplan"),
                   {typing(QStringLiteral("<b>x</b>")), plainly(QMessageBox::Ok)});
    QCOMPARE(told_.constLast(), QStringLiteral("Error|The plan <B>X</B> already exists."));
}

void PlanScreenTest::a_cell_of_a_file_is_plain_text_in_the_preview() {
    start_alone();
    const QString file =
        file_with(QStringLiteral("some.csv"), "frequenza,qpsk_symbolrate\n1000,<b>x</b>\n");
    answering_each(pressed("cmdimport"), {choosing(file), [](QWidget* front) {
                                              const auto* cell =
                                                  front->findChild<QTableWidget*>()->item(0, 8);
                                              const QString text = cell->text();
                                              const QString tip = cell->toolTip();
                                              qobject_cast<QDialog*>(front)->reject();
                                              QVERIFY(text.contains(QStringLiteral("<b>x</b>")));
                                              QVERIFY(!tip.contains(QStringLiteral("<b>")));
                                              QVERIFY(tip.contains(QStringLiteral("&lt;b&gt;x")));
                                          }});
}

}  // namespace m47::plans
