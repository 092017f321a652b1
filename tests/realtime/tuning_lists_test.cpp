// SPDX-License-Identifier: GPL-3.0-or-later
// The lists, the symbol rate and the bandwidth.
#include "enter_key.h"
#include "tuning_test.h"

#include <functional>

namespace m47::realtime {

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

void TuningTest::a_corrected_entry_is_shown_before_it_is_sent() {
    QString shown;
    QStringList events;
    panel().on_repaint = [&] {
        shown = panel().ol_freq + u'|' + panel().srqpsk_txt + u'|' + panel().chbws;
    };
    f_->on_command = [&](const QByteArray& command) {
        if (events.isEmpty()) events = {shown, QString::fromLatin1(command)};
    };
    const auto first_of = [&](const std::function<void()>& entry) {
        shown.clear();
        events.clear();
        entry();
        return events;
    };
    panel().ol_freq = "1";
    panel().srqpsk_txt = "1";
    panel().chbws = "1";
    QCOMPARE(first_of([&] { tuning().ol_freq_KeyPress(kEnterKey); })[0], QString("03070|1|1"));
    QCOMPARE(first_of([&] { tuning().srqpsk_txt_KeyPress(kEnterKey); })[0],
             QString("03070|01500|1"));
    QCOMPARE(first_of([&] { tuning().chbws_KeyPress(kEnterKey); })[0], QString("03070|01500|05"));
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

}  // namespace m47::realtime
