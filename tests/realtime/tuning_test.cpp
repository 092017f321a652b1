// SPDX-License-Identifier: GPL-3.0-or-later
#include "tuning_test.h"
#include "enter_key.h"

namespace m47::realtime {

void TuningTest::frequency_data() {
    QTest::addColumn<bool>("direct");
    QTest::addColumn<QString>("oscillator");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    const auto row = [](bool direct, const char* oscillator, const char* typed, const char* shown) {
        QTest::addRow("%s of %s: %s", direct ? "direct" : "oscillator", oscillator, typed)
            << direct << QString(oscillator) << QString(typed) << QString(shown);
    };
    row(true, "10600", "100", "0920.0");
    row(true, "10600", "3000", "2150.0");
    row(true, "10600", "919.9", "0920.0");
    row(true, "10600", "920", "0920.0");
    row(true, "10600", "1234.56", "1234.6");
    row(true, "10600", "1234.25", "1234.3");
    row(true, "10600", "2150", "2150.0");
    row(true, "10600", "2150.1", "2150.0");
    row(true, "10600", "", "0920.0");
    row(true, "10600", "what", "0920.0");
    row(true, "10600", "-1000", "0920.0");
    row(false, "10600", "11519", "11520");
    row(false, "10600", "11727.5", "11728");
    row(false, "10600", "12751", "12750");
    row(false, "10600", "", "11520");
    row(false, "5150", "2999", "03000");
    row(false, "5150", "3700", "03700");
    row(false, "5150", "4231", "04230");
    // Exactly 7000 MHz lies below the band.
    row(false, "7000", "100", "07920");
    row(false, "7000", "20000", "09150");
    row(false, "6999", "100", "04849");
    row(false, "6999", "20000", "06079");
    // A range that reaches the intermediate band is formatted with its decimal.
    row(false, "3070", "100", "0920.0");
    row(false, "3070", "20000", "2150.0");
    // 0 says that nothing was entered, where the range allows it.
    row(false, "1000", "0", "00080");
    row(false, "2150", "", "1230.0");
    row(false, "2150", "-5", "1230.0");
    row(false, "920", "50", "00000");
}

void TuningTest::frequency() {
    QFETCH(bool, direct);
    QFETCH(QString, oscillator);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    panel().locopt = {direct, !direct};
    panel().ol_freq = oscillator;
    panel().fsat = typed;
    tuning().fsat_KeyPress(kEnterKey);
    QCOMPARE(panel().fsat, shown);
    QCOMPARE(f_->commands(), QStringList{QString("FREQ ") + shown});
    QCOMPARE(panel().ol_freq, oscillator);
}

void TuningTest::typed_decimals_in_either_form() {
    const SystemLocale italian(QLocale::Italian);
    panel().fsat = "1234,5";
    tuning().fsat_KeyPress(kEnterKey);
    QCOMPARE(panel().fsat, QString("1234.5"));
    tuning().fsat_KeyPress(kEnterKey);
    QCOMPARE(panel().fsat, QString("1234.5"));
    panel().srqpsk_txt = "2000,6";
    tuning().srqpsk_txt_KeyPress(kEnterKey);
    panel().chbws = "7,6";
    tuning().chbws_KeyPress(kEnterKey);
    QCOMPARE(f_->commands(),
             (QStringList{"FREQ 1234.5", "FREQ 1234.5", "SYMBRATEQPSK 02001", "CHBW 08"}));
}

void TuningTest::other_keys_only_edit_data() {
    QTest::addColumn<int>("key");
    for (const int key : {0, 8, 9, 10, 12, 14, 27, 32, 46, 48, 57, 65, 127, -13})
        QTest::addRow("%d", key) << key;
}

void TuningTest::other_keys_only_edit() {
    QFETCH(int, key);
    panel().fsat = "100";
    panel().ol_freq = "2000";
    panel().srqpsk_txt = "900";
    panel().chbws = "0";
    tuning().fsat_KeyPress(key);
    tuning().ol_freq_KeyPress(key);
    tuning().srqpsk_txt_KeyPress(key);
    tuning().chbws_KeyPress(key);
    QCOMPARE(f_->commands(), QStringList());
    QCOMPARE(panel().fsat, QString("100"));
    QCOMPARE(panel().ol_freq, QString("2000"));
    QCOMPARE(panel().srqpsk_txt, QString("900"));
    QCOMPARE(panel().chbws, QString("0"));
}

void TuningTest::a_refused_command_keeps_the_box() {
    f_->refuse("CHBW 12");
    panel().chbws = "12";
    tuning().chbws_KeyPress(kEnterKey);
    QCOMPARE(f_->commands(), (QStringList{"CHBW 12", "CHBW 12", "CHBW 12"}));
    QCOMPARE(panel().chbws, QString("12"));
    QVERIFY(!f_->link.port_connected);
}

void TuningTest::without_a_link_the_box_is_still_corrected() {
    f_->link.port_connected = false;
    panel().fsat = "100";
    panel().ol_freq = "2000";
    panel().srqpsk_txt = "900";
    panel().chbws = "99";
    tuning().fsat_KeyPress(kEnterKey);
    QCOMPARE(panel().fsat, QString("0920.0"));
    tuning().ol_freq_KeyPress(kEnterKey);
    tuning().srqpsk_txt_KeyPress(kEnterKey);
    tuning().chbws_KeyPress(kEnterKey);
    QCOMPARE(panel().ol_freq, QString("03070"));
    QCOMPARE(panel().srqpsk_txt, QString("01500"));
    QCOMPARE(panel().chbws, QString("36"));
    QCOMPARE(f_->port.opens, 0);
}

void TuningTest::no_local_oscillator() {
    f_->values["FREQ?"] = " 1000.0 ";
    panel().locopt = {true, false};
    tuning().locopt_Click(0);
    QCOMPARE(f_->commands(), (QStringList{"LOCOSC 00", "FREQ?"}));
    QVERIFY(!panel().ol_freq_enabled);
    // The answer is shown as it stands.
    QCOMPARE(panel().fsat, QString(" 1000.0 "));
}

void TuningTest::local_oscillator_data() {
    QTest::addColumn<QString>("oscillator");
    QTest::addColumn<QString>("stored");
    QTest::newRow("five digits") << "10600"
                                 << "LOCOSC 1 A 10600";
    QTest::newRow("four digits") << "9750"
                                 << "LOCOSC 1 A 09750";
    QTest::newRow("decimals") << "9750.5"
                              << "LOCOSC 1 A 09751";
    QTest::newRow("nothing") << ""
                             << "LOCOSC 1 A 00000";
}

void TuningTest::local_oscillator() {
    QFETCH(QString, oscillator);
    QFETCH(QString, stored);
    f_->values["FREQ?"] = "11727";
    panel().ol_freq_enabled = false;
    panel().ol_freq = oscillator;
    tuning().locopt_Click(1);
    QCOMPARE(f_->commands(), (QStringList{stored, "LOCOSC 1 A", "FREQ?"}));
    QVERIFY(panel().ol_freq_enabled);
    QCOMPARE(panel().fsat, QString("11727"));
    QCOMPARE(panel().ol_freq, oscillator);
}

void TuningTest::oscillator_choice_during_a_recall_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("enabled");
    for (const int index : {0, 1})
        for (const bool enabled : {false, true})
            QTest::addRow("option %d, box %s", index, enabled ? "on" : "off") << index << enabled;
}

void TuningTest::oscillator_choice_during_a_recall() {
    QFETCH(int, index);
    QFETCH(bool, enabled);
    f_->values["FREQ?"] = "1100.0";
    f_->state().recall_in_progress = true;
    panel().ol_freq_enabled = enabled;
    tuning().locopt_Click(index);
    QCOMPARE(f_->commands(), QStringList{"FREQ?"});
    QCOMPARE(panel().fsat, QString("1100.0"));
    QCOMPARE(panel().ol_freq_enabled, enabled);
}

void TuningTest::oscillator_choice_that_is_not_sent_keeps_the_frequency_data() {
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("suspended");
    QTest::newRow("no link") << false << false;
    QTest::newRow("suspended") << true << true;
}

void TuningTest::oscillator_choice_that_is_not_sent_keeps_the_frequency() {
    QFETCH(bool, connected);
    QFETCH(bool, suspended);
    f_->link.port_connected = connected;
    f_->link.commands_suspended = suspended;
    leave_answer(f_->link, f_->port, "of another command");
    tuning().locopt_Click(0);
    QCOMPARE(panel().fsat, QString("1000.0"));
    QVERIFY(!panel().ol_freq_enabled);
    tuning().locopt_Click(1);
    QCOMPARE(panel().fsat, QString("1000.0"));
    QVERIFY(panel().ol_freq_enabled);
    QCOMPARE(f_->port.opens, 0);
}

void TuningTest::link_lost_at_the_oscillator_keeps_the_frequency() {
    f_->refuse("LOCOSC 00");
    tuning().locopt_Click(0);
    QCOMPARE(f_->commands(), (QStringList{"LOCOSC 00", "LOCOSC 00", "LOCOSC 00"}));
    QCOMPARE(panel().fsat, QString("1000.0"));
}

void TuningTest::link_lost_at_the_frequency_query_leaves_its_empty_answer() {
    f_->refuse("FREQ?");
    tuning().locopt_Click(0);
    QVERIFY(!f_->link.port_connected);
    QCOMPARE(panel().fsat, QString());
}

void TuningTest::a_frequency_that_was_not_answered_is_kept_where_chosen_data() {
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("lost") << QByteArray();
    QTest::newRow("no number") << QByteArray("FREQ?\rInvalid Parameter(s)\rOK\r");
}

void TuningTest::a_frequency_that_was_not_answered_is_kept_where_chosen() {
    QFETCH(QByteArray, answer);
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->raw["FREQ?"] = answer;
    f_->program.corrected.keep_box = true;
    panel().fsat = "1275.5";
    tuning().locopt_Click(0);
    QCOMPARE(panel().fsat, QString("1275.5"));
    QCOMPARE(told, QStringList());
    // By default it is gone, which is told, but once.
    f_->program.corrected.keep_box = false;
    for (int time = 0; time < 2; ++time) {
        f_->link.port_connected = true;
        tuning().locopt_Click(0);
        QVERIFY(panel().fsat.isEmpty() || panel().fsat == u"0");
        QCOMPARE(told, QStringList("Frequency not kept: type it again"));
    }
    f_->raw["FREQ?"] = "FREQ?\r1300.0\rOK\r";
    f_->program.corrected.keep_box = true;
    f_->link.port_connected = true;
    tuning().locopt_Click(0);
    QCOMPARE(panel().fsat, QString("1300.0"));
}

void TuningTest::oscillator_frequency_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("digits");
    const auto row = [](const char* typed, const char* shown, const char* digits) {
        QTest::addRow("%s", typed) << QString(typed) << QString(shown) << QString(digits);
    };
    row("2000", "03070", "03070");
    row("13000", "12000", "12000");
    row("3069", "03070", "03070");
    row("3069.9", "03070", "03070");
    row("3070", "3070", "03070");
    row("12000", "12000", "12000");
    row("12000.1", "12000", "12000");
    row("10600", "10600", "10600");
    row("9750", "9750", "09750");
    row("09750", "09750", "09750");
    row("", "03070", "03070");
    row("what", "03070", "03070");
    // Six characters are kept, whatever they are.
    row("10600.75", "10600.", "10600");
    row("9750.75", "9750.7", "09751");
    row("  9750.5", "  9750", "09750");
}

void TuningTest::oscillator_frequency() {
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(QString, digits);
    panel().ol_freq = typed;
    tuning().ol_freq_KeyPress(kEnterKey);
    QCOMPARE(panel().ol_freq, shown);
    QCOMPARE(f_->commands(),
             (QStringList{QString("LOCOSC01") + digits, "LOCOSC01", "FREQ 1000.0"}));
}

void TuningTest::oscillator_frequency_brings_the_frequencies_along() {
    panel().locopt = {false, true};
    panel().ol_freq = "9750";
    panel().fsat = "1000.0";
    panel().noise_freqa = "20000";
    panel().noise_freqd = "11000.4";
    tuning().ol_freq_KeyPress(kEnterKey);
    // The two further frequencies are only rewritten.
    QCOMPARE(f_->commands(), (QStringList{"LOCOSC0109750", "LOCOSC01", "FREQ 10670"}));
    QCOMPARE(panel().fsat, QString("10670"));
    QCOMPARE(panel().noise_freqa, QString("11900"));
    QCOMPARE(panel().noise_freqd, QString("11000"));
}

void TuningTest::oscillator_frequency_with_direct_tuning() {
    panel().ol_freq = "9750";
    panel().noise_freqa = "";
    panel().noise_freqd = "2000";
    tuning().ol_freq_KeyPress(kEnterKey);
    QCOMPARE(f_->commands(), (QStringList{"LOCOSC0109750", "LOCOSC01", "FREQ 1000.0"}));
    QCOMPARE(panel().noise_freqa, QString("0920.0"));
    QCOMPARE(panel().noise_freqd, QString("2000.0"));
}

void TuningTest::noise_boxes_start_from_the_present_frequency() {
    panel().locopt = {false, true};
    panel().ol_freq = "9750";
    panel().fsat = "11000";
    tuning().ol_freq_KeyPress(kEnterKey);
    tuning().start_noise_boxes();
    QCOMPARE(panel().noise_freqa, QString("11000"));
    QCOMPARE(panel().noise_freqd, QString("11000"));
}

}  // namespace m47::realtime

QTEST_GUILESS_MAIN(m47::realtime::TuningTest)
