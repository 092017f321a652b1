// SPDX-License-Identifier: GPL-3.0-or-later
#include "modes_test.h"

namespace m47::realtime {

void ModesTest::change_program(const QMap<QString, QVariant>& fields) {
    f_->database().programmi().move_first();
    RealtimeFixture::change_row(f_->database().programmi(), fields);
}

void ModesTest::change_configuration(const QMap<QString, QVariant>& fields) {
    f_->database().configurazione().move_first();
    RealtimeFixture::change_row(f_->database().configurazione(), fields);
}

void ModesTest::add_plan(const QString& name, const QMap<QString, QVariant>& program) {
    auto row = program;
    row["nome"] = name;
    RealtimeFixture::add_row(f_->database().programmi(), row);
    RealtimeFixture::add_row(f_->database().configurazione(), {{"nome", name}});
}

QStringList ModesTest::everything_shown() {
    const RealtimePanel& p = panel();
    return {p.prog_num,
            p.fsat,
            p.ol_freq,
            p.srqpsk_txt,
            QString::number(p.locopt[0]),
            QString::number(p.locopt[1]),
            QString::number(p.ol_freq_enabled),
            QString::number(p.satlnb_state),
            QString::number(p.k22_state),
            p.lev_mina,
            p.lev_mind,
            p.lev_maxa,
            p.lev_maxd,
            p.cn_mina,
            p.cn_mind,
            p.cn_maxa,
            p.cn_maxd,
            p.chber_mind,
            p.chber_maxd,
            p.mer_mind,
            p.mer_maxd,
            frames()};
}

QString ModesTest::frames() {
    return QStringLiteral("mode %1, satdigmea %2, analogresults %3, digitalresults %4")
        .arg(state().meas_mode)
        .arg(panel().satdigmea_visible)
        .arg(panel().analogresults_visible)
        .arg(panel().digitalresults_visible);
}

QString ModesTest::analog_frames() {
    return QStringLiteral("mode 2, satdigmea 0, analogresults 1, digitalresults 0");
}

QString ModesTest::digital_frames() {
    return QStringLiteral("mode 3, satdigmea 1, analogresults 0, digitalresults 1");
}

void ModesTest::init() {
    f_ = std::make_unique<RealtimeFixture>();
    f_->values["SYMBRATEQPSK?"] = " 30000 ";
    f_->values["UNIT?"] = "1";
    f_->values["FREQ?"] = "1234.5";
    change_program(whole_program());
    change_configuration({{"loc_osc1", 9750}, {"loc_osc2", 10750.5}});
    panel().grp_name = "PLAN 1";
}

void ModesTest::load() {
    panel().satlnb_state = 2;
    panel().k22_state = 0;
    state().acq_kind = 2;
    state().ticks_left = 99;
    state().plan_run_active = true;
    state().east_limit_set = state().west_limit_set = true;
    modes().Form_Load();
    QCOMPARE(f_->commands(), kLoadCommands);
    QCOMPARE(state().field_separator, QChar(u'\t'));
    QCOMPARE(panel().satlnb_state, 0);
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("30000"));
    QCOMPARE(panel().cmdlev, 1);
    QCOMPARE(f_->program.unit_index, 1);
    QCOMPARE(panel().fsat, QString("1000.0"));
    QCOMPARE(panel().ol_freq, QString("10600"));
    QCOMPARE(state().ticks_left, 1);
    QVERIFY(!state().plan_run_active);
    QVERIFY(!state().recall_in_progress);
    QVERIFY(!state().east_limit_set);
    QVERIFY(!state().west_limit_set);
}

void ModesTest::load_is_one_recall() {
    QStringList in_recall;
    f_->on_command = [&](const QByteArray& command) {
        if (state().recall_in_progress) in_recall += QString::fromLatin1(command);
    };
    modes().Form_Load();
    QCOMPARE(in_recall, kLoadCommands);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_shows_the_screen_first() {
    QStringList events;
    panel().on_repaint = [&] {
        if (events.isEmpty()) events += "shown";
    };
    f_->on_command = [&](const QByteArray& command) { events += QString::fromLatin1(command); };
    modes().Form_Load();
    QCOMPARE(events, QStringList{"shown"} + kLoadCommands);
}

void ModesTest::load_starts_the_noise_boxes_where_c_n_is_complete() {
    panel().noise_freqa = panel().noise_freqd = "950.0";
    modes().Form_Load();
    QCOMPARE(panel().noise_freqa, QString("950.0"));
    f_->program.corrected.complete = true;
    modes().Form_Load();
    QCOMPARE(panel().noise_freqa, QString("1000.0"));
    QCOMPARE(panel().noise_freqd, QString("1000.0"));
}

void ModesTest::load_without_a_link() {
    f_->link.port_connected = false;
    leave_answer(f_->link, f_->port, "2");
    f_->program.unit_index = 1;
    modes().Form_Load();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().satlnb_state, 0);
    QCOMPARE(panel().k22_state, 1);
    // Without an answer the texts and the unit stay.
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QCOMPARE(panel().cmdlev, 1);
    QCOMPARE(f_->program.unit_index, 1);
    QCOMPARE(state().field_separator, QChar(u'\t'));
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_while_commands_are_suspended() {
    f_->link.commands_suspended = true;
    leave_answer(f_->link, f_->port, "2");
    modes().Form_Load();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QCOMPARE(panel().cmdlev, 0);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_goes_on_after_a_refusal_data() {
    QTest::addColumn<QString>("refused");
    for (const QString& command : kLoadCommands) QTest::newRow(qPrintable(command)) << command;
}

void ModesTest::load_goes_on_after_a_refusal() {
    QFETCH(QString, refused);
    f_->refuse(refused.toLatin1());
    state().ticks_left = 99;
    modes().Form_Load();
    // The refused one is sent three times, then the link is lost and the rest not sent.
    const qsizetype before = kLoadCommands.indexOf(refused);
    QCOMPARE(f_->commands(),
             (kLoadCommands.first(before) + QStringList{refused, refused, refused}));
    QVERIFY(!f_->link.port_connected);
    QCOMPARE(panel().satlnb_state, 0);
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(state().ticks_left, 1);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::load_ended_by_the_user() {
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "TONE22K 00"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, modes().Form_Load());
    QCOMPARE(f_->commands().last(), QString("TONE22K 00"));
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::unit_of_the_meter_data() {
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("unit");
    QTest::newRow("dBuV") << QByteArray("0") << 0;
    QTest::newRow("dBmV") << QByteArray("1") << 1;
    QTest::newRow("dBm") << QByteArray("2") << 2;
    QTest::newRow("two digits and a blank") << QByteArray(" 02") << 2;
    QTest::newRow("no number") << QByteArray("dBm") << 0;
    QTest::newRow("truncated") << QByteArray("1.9") << 1;
    QTest::newRow("no such unit") << QByteArray("3") << 0;
    QTest::newRow("negative") << QByteArray("-1") << 0;
    QTest::newRow("beyond 16 bits") << QByteArray("99999") << 0;
    QTest::newRow("refused argument") << QByteArray("Invalid Parameter(s)") << 0;
}

void ModesTest::unit_of_the_meter() {
    QFETCH(QByteArray, reply);
    QFETCH(int, unit);
    f_->values["UNIT?"] = reply;
    f_->program.unit_index = panel().cmdlev = 2;
    modes().Form_Load();
    QCOMPARE(panel().cmdlev, unit);
    QCOMPARE(f_->program.unit_index, unit);
    QCOMPARE(f_->commands(), kLoadCommands);
}

void ModesTest::coming_to_the_front() {
    panel().satdigmea_visible = true;
    panel().digitalresults_visible = true;
    panel().analogresults_visible = false;
    state().meas_mode = kDigitalMode;
    modes().Form_Activate();
    QCOMPARE(f_->commands(), QStringList{"ATTEN 6"});
    // Only the results change; the digital measures stay where they were.
    QCOMPARE(frames(), QString("mode 2, satdigmea 1, analogresults 1, digitalresults 0"));
}

void ModesTest::coming_to_the_front_keeps_the_mode_where_chosen() {
    f_->program.corrected.keep_mode = true;
    modes().Form_Activate();
    QCOMPARE(frames(), analog_frames());
    modes().digitalmode();
    f_->commands();
    modes().Form_Activate();
    QCOMPARE(f_->commands(), QStringList{"ATTEN 6"});
    QCOMPARE(frames(), digital_frames());
    modes().analogmode();
    modes().Form_Activate();
    QCOMPARE(frames(), analog_frames());
}

void ModesTest::analog_presentation() {
    modes().digitalmode();
    f_->commands();
    modes().analogmode();
    QCOMPARE(frames(), analog_frames());
    QCOMPARE(f_->commands(), QStringList());
}

void ModesTest::digital_presentation() {
    panel().meas_stated_enabled.fill(false);
    panel().meas_stated_enabled[kRu] = true;
    panel().k22_state = 0;
    modes().digitalmode();
    QCOMPARE(f_->commands(), (QStringList{"TONE22K 00", "SYMBRATEQPSK?"}));
    QCOMPARE(frames(), digital_frames());
    QCOMPARE(panel().meas_stated_enabled,
             (std::array{false, false, false, true, true, true, true, false}));
    QVERIFY(!panel().rucomune_enabled);
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("30000"));
}

void ModesTest::digital_presentation_while_commands_are_suspended() {
    f_->link.commands_suspended = true;
    panel().k22_state = 0;
    state().east_limit_set = true;
    modes().digitalmode();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(frames(), digital_frames());
    QCOMPARE(panel().k22_state, 0);
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QVERIFY(state().east_limit_set);
}

void ModesTest::digital_presentation_without_the_satellite_frame() {
    panel().sat_opt_visible = false;
    modes().digitalmode();
    QCOMPARE(frames(), analog_frames());
    QVERIFY(panel().meas_stated_enabled[kRu]);
    QVERIFY(panel().rucomune_enabled);
    QCOMPARE(f_->port.opens, 0);
}

void ModesTest::satellite_defaults() {
    panel().k22_state = 0;
    state().east_limit_set = state().west_limit_set = true;
    modes().configurazione_prmt();
    QCOMPARE(f_->commands(), (QStringList{"TONE22K 00", "SYMBRATEQPSK?"}));
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("30000"));
    QVERIFY(!state().east_limit_set);
    QVERIFY(!state().west_limit_set);
}

void ModesTest::satellite_defaults_without_a_link() {
    f_->link.port_connected = false;
    leave_answer(f_->link, f_->port, "of another command");
    panel().k22_state = 0;
    state().east_limit_set = state().west_limit_set = true;
    modes().configurazione_prmt();
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("27500"));
    QVERIFY(!state().east_limit_set);
    QVERIFY(!state().west_limit_set);
}

void ModesTest::a_symbol_rate_that_was_not_answered_data() {
    QTest::addColumn<bool>("kept");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("shown");
    for (const bool kept : {false, true}) {
        const QByteArray words = kept ? "kept, " : "by default, ";
        QTest::newRow(words + "lost") << kept << QByteArray() << (kept ? "27500" : "");
        QTest::newRow(words + "no number")
            << kept << QByteArray("SYMBRATEQPSK?\rInvalid Parameter(s)\rOK\r")
            << (kept ? "27500" : "0");
        QTest::newRow(words + "answered")
            << kept << QByteArray("SYMBRATEQPSK?\r 22000 \rOK\r") << "22000";
    }
}

void ModesTest::a_symbol_rate_that_was_not_answered() {
    QFETCH(bool, kept);
    QFETCH(QByteArray, answer);
    QFETCH(QString, shown);
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->program.corrected.keep_box = kept;
    f_->raw["SYMBRATEQPSK?"] = answer;
    modes().configurazione_prmt();
    QCOMPARE(panel().srqpsk_txt, shown);
    const bool lost = !kept && shown != u"22000";
    QCOMPARE(told, lost ? QStringList("Symbol rate not kept: type it again") : QStringList());
}

void ModesTest::unit_menu_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("command");
    QTest::newRow("dBuV") << 0 << "UNIT 00";
    QTest::newRow("dBmV") << 1 << "UNIT 01";
    QTest::newRow("dBm") << 2 << "UNIT 02";
}

void ModesTest::unit_menu() {
    QFETCH(int, index);
    QFETCH(QString, command);
    panel().cmdlev = f_->program.unit_index = 9;
    modes().cmdlev_Click(index);
    QCOMPARE(f_->commands(), QStringList{command});
    QCOMPARE(panel().cmdlev, index);
    QCOMPARE(f_->program.unit_index, index);
}

void ModesTest::the_same_unit_twice() {
    modes().cmdlev_Click(1);
    modes().cmdlev_Click(1);
    QCOMPARE(f_->commands(), (QStringList{"UNIT 01", "UNIT 01"}));
}

void ModesTest::unit_menu_during_a_recall() {
    state().recall_in_progress = true;
    modes().cmdlev_Click(2);
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().cmdlev, 2);
    QCOMPARE(f_->program.unit_index, 2);
}

}  // namespace m47::realtime

QTEST_GUILESS_MAIN(m47::realtime::ModesTest)
