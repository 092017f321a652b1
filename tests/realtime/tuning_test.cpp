// SPDX-License-Identifier: GPL-3.0-or-later
#include "tuning.h"

#include <QTest>

#include "answer_before.h"
#include "realtime_fixture.h"

namespace m47 {

/// What the tuning controls send and show when the user confirms a value.
class TuningTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init() { f_ = std::make_unique<RealtimeFixture>(); }
    void cleanup() { f_.reset(); }

    void frequency_data();
    void frequency();
    void typed_decimals_in_either_form();
    void other_keys_only_edit_data();
    void other_keys_only_edit();
    void a_refused_command_keeps_the_box();
    void without_a_link_the_box_is_still_corrected();
    void no_local_oscillator();
    void local_oscillator_data();
    void local_oscillator();
    void oscillator_choice_during_a_recall_data();
    void oscillator_choice_during_a_recall();
    void oscillator_choice_that_is_not_sent_keeps_the_frequency_data();
    void oscillator_choice_that_is_not_sent_keeps_the_frequency();
    void link_lost_at_the_oscillator_keeps_the_frequency();
    void link_lost_at_the_frequency_query_leaves_its_empty_answer();
    void a_frequency_that_was_not_answered_is_kept_where_chosen_data();
    void a_frequency_that_was_not_answered_is_kept_where_chosen();
    void oscillator_frequency_data();
    void oscillator_frequency();
    void oscillator_frequency_brings_the_frequencies_along();
    void oscillator_frequency_with_direct_tuning();
    void noise_boxes_start_from_the_present_frequency();
    void lnb_data();
    void lnb();
    void five_entry_lnb_data();
    void five_entry_lnb();
    void tone_data();
    void tone();
    void lists_send_nothing_during_a_recall();
    void general_list_data();
    void general_list();
    void general_list_sends_its_entry_data();
    void general_list_sends_its_entry();
    void general_list_without_an_answer_data();
    void general_list_without_an_answer();
    void symbol_rate_data();
    void symbol_rate();
    void bandwidth_data();
    void bandwidth();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    Tuning& tuning() { return f_->rules.tuning; }

    std::unique_ptr<RealtimeFixture> f_;
};

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

void TuningTest::lnb_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("commands");
    QTest::newRow("OFF") << 0 << QStringList{"LNB 00"};
    QTest::newRow("13V") << 1 << QStringList{"LNVOLT 13", "LNB 01"};
    QTest::newRow("18V") << 2 << QStringList{"LNVOLT 18", "LNB 01"};
    QTest::newRow("no entry") << -1 << QStringList{};
    QTest::newRow("past the last") << 3 << QStringList{};
}

void TuningTest::lnb() {
    QFETCH(int, index);
    QFETCH(QStringList, commands);
    tuning().satlnb_state_Click(index);
    QCOMPARE(f_->commands(), commands);
}

void TuningTest::five_entry_lnb_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("commands");
    QTest::newRow("OFF") << 0 << QStringList{"LNB 00"};
    QTest::newRow("13V") << 1 << QStringList{"LNVOLT 13", "LNB 01"};
    QTest::newRow("15V") << 2 << QStringList{"LNVOLT 15", "LNB 01"};
    QTest::newRow("18V") << 3 << QStringList{"LNVOLT 18", "LNB 01"};
    QTest::newRow("24V") << 4 << QStringList{"LNVOLT 24", "LNB 01"};
    QTest::newRow("no entry") << -1 << QStringList{};
    QTest::newRow("past the last") << 5 << QStringList{};
}

void TuningTest::five_entry_lnb() {
    QFETCH(int, index);
    QFETCH(QStringList, commands);
    tuning().lnb_supply_Click(index);
    QCOMPARE(f_->commands(), commands);
}

void TuningTest::tone_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("commands");
    QTest::newRow("ON") << 0 << QStringList{"TONE22K 01"};
    QTest::newRow("OFF") << 1 << QStringList{"TONE22K 00"};
    QTest::newRow("no entry") << -1 << QStringList{};
    QTest::newRow("past the last") << 2 << QStringList{};
}

void TuningTest::tone() {
    QFETCH(int, index);
    QFETCH(QStringList, commands);
    tuning().k22_state_Click(index);
    QCOMPARE(f_->commands(), commands);
}

void TuningTest::lists_send_nothing_during_a_recall() {
    f_->state().recall_in_progress = true;
    for (int index = 0; index < 5; ++index) {
        tuning().satlnb_state_Click(index);
        tuning().lnb_supply_Click(index);
        tuning().k22_state_Click(index);
        QCOMPARE(tuning().list_Click("ATTEN", index, 7), index);
    }
    QCOMPARE(f_->port.opens, 0);
}

void TuningTest::general_list_data() {
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("selected");
    QTest::newRow("accepted") << QByteArray("3") << 3;
    QTest::newRow("with a blank") << QByteArray(" 3") << 3;
    QTest::newRow("two digits") << QByteArray("03") << 3;
    QTest::newRow("another entry") << QByteArray("5") << 5;
    QTest::newRow("the first") << QByteArray("0") << 0;
    QTest::newRow("the last") << QByteArray("6") << 6;
    QTest::newRow("no number") << QByteArray("what") << 0;
    QTest::newRow("no such entry") << QByteArray("7") << 3;
    QTest::newRow("below the first") << QByteArray("-1") << 3;
}

void TuningTest::general_list() {
    QFETCH(QByteArray, reply);
    QFETCH(int, selected);
    f_->values["ATTEN?"] = reply;
    QCOMPARE(tuning().list_Click("ATTEN", 3, 7), selected);
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 03", "ATTEN?"}));
}

void TuningTest::general_list_sends_its_entry_data() {
    QTest::addColumn<int>("index");
    for (int index = 0; index <= 6; ++index) QTest::addRow("%d", index) << index;
}

void TuningTest::general_list_sends_its_entry() {
    QFETCH(int, index);
    f_->values["ATTEN?"] = QByteArray::number(index);
    QCOMPARE(tuning().list_Click("ATTEN", index, 7), index);
    QCOMPARE(f_->commands(), (QStringList{QString("ATTEN 0%1").arg(index), "ATTEN?"}));
}

void TuningTest::general_list_without_an_answer_data() {
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("suspended");
    QTest::addColumn<QByteArray>("refused");
    QTest::newRow("no link") << false << false << QByteArray();
    QTest::newRow("suspended") << true << true << QByteArray();
    QTest::newRow("lost at the setting") << true << false << QByteArray("ATTEN 03");
    QTest::newRow("lost at the query") << true << false << QByteArray("ATTEN?");
}

void TuningTest::general_list_without_an_answer() {
    QFETCH(bool, connected);
    QFETCH(bool, suspended);
    QFETCH(QByteArray, refused);
    f_->link.port_connected = connected;
    f_->link.commands_suspended = suspended;
    leave_answer(f_->link, f_->port, "5");
    if (!refused.isEmpty()) f_->refuse(refused);
    QCOMPARE(tuning().list_Click("ATTEN", 3, 7), 3);
}

void TuningTest::symbol_rate_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* typed, const char* shown) {
        QTest::addRow("%s", typed) << QString(typed) << QString(shown);
    };
    row("900", "01500");
    row("50000", "45000");
    row("27500", "27500");
    row("1499.9", "01500");
    row("1500", "01500");
    row("45000", "45000");
    row("45000.1", "45000");
    row("22000.5", "22001");
    row("0", "01500");
    row("", "01500");
    row("-27500", "01500");
    row("what", "01500");
}

void TuningTest::symbol_rate() {
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    panel().srqpsk_txt = typed;
    tuning().srqpsk_txt_KeyPress(kEnterKey);
    QCOMPARE(panel().srqpsk_txt, shown);
    QCOMPARE(f_->commands(), QStringList{QString("SYMBRATEQPSK ") + shown});
}

void TuningTest::bandwidth_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* typed, const char* shown) {
        QTest::addRow("%s", typed) << QString(typed) << QString(shown);
    };
    row("0", "05");
    row("", "05");
    row("4.9", "05");
    row("5", "05");
    row("8", "08");
    row("27", "27");
    row("27.5", "28");
    row("36", "36");
    row("36.1", "36");
    row("100", "36");
    row("-8", "05");
    row("what", "05");
}

void TuningTest::bandwidth() {
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    panel().chbws = typed;
    tuning().chbws_KeyPress(kEnterKey);
    QCOMPARE(panel().chbws, shown);
    QCOMPARE(f_->commands(), QStringList{QString("CHBW ") + shown});
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::TuningTest)
#include "tuning_test.moc"
