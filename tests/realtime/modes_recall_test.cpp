// SPDX-License-Identifier: GPL-3.0-or-later
// A program of a plan is recalled.
#include "modes_test.h"

namespace m47::realtime {

void ModesTest::recall_of_an_analog_program() {
    // The oscillator choice is the program's already.
    panel().locopt = {false, true};
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(everything_shown(),
             (QStringList{"007",  "11727.5", "9750", "22000",        "0", "1", "1",  "1",  "0",
                          "35",   "35",      "85",   "85",           "6", "6", "26", "26", "1E-7",
                          "2E-2", "8",       "28",   analog_frames()}));
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::recall_leaves_the_results_as_those_of_the_program_before() {
    QVERIFY(!panel().results_of_before);
    panel().leva = "58.3";
    change_program({{"monitor_state", 0}});
    modes().crea_records_realtime();
    // Nothing of it is shown: the results are still those of what is.
    QVERIFY(!panel().results_of_before);
    change_program({{"monitor_state", 1}});
    modes().crea_records_realtime();
    QVERIFY(panel().results_of_before);
    QCOMPARE(panel().leva, QString("58.3"));
}

void ModesTest::recall_of_a_digital_program() {
    panel().locopt = {false, true};
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->commands(), (QStringList{"TONE22K 00", "SYMBRATEQPSK?"}));
    // Reading the satellite defaults switches the tone off behind the program's own setting; the
    // symbol rate is the program's again.
    QCOMPARE(panel().k22_state, 1);
    QCOMPARE(panel().srqpsk_txt, QString("22000"));
    QCOMPARE(panel().satlnb_state, 1);
    QCOMPARE(frames(), digital_frames());
    QCOMPARE(panel().mer_mind, QString("8"));
}

void ModesTest::recall_while_commands_are_suspended() {
    f_->link.commands_suspended = true;
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(panel().fsat, QString("11727.5"));
    QCOMPARE(panel().locopt, (std::array{false, true}));
    QCOMPARE(panel().k22_state, 0);
    QCOMPARE(panel().srqpsk_txt, QString("22000"));
    QCOMPARE(frames(), digital_frames());
}

void ModesTest::recall_that_changes_the_oscillator_choice_data() {
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("direct");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("fsat");
    QTest::newRow("to the oscillator") << true << false << QStringList{"FREQ?"} << "1234.5";
    QTest::newRow("to none") << false << true << QStringList{"FREQ?"} << "1234.5";
    QTest::newRow("stays direct") << true << true << QStringList{} << "11727.5";
    QTest::newRow("keeps its oscillator") << false << false << QStringList{} << "11727.5";
}

void ModesTest::recall_that_changes_the_oscillator_choice() {
    QFETCH(bool, before);
    QFETCH(bool, direct);
    QFETCH(QStringList, commands);
    QFETCH(QString, fsat);
    panel().locopt = {before, !before};
    change_program({{"loc_osc", direct}});
    bool in_recall = true;
    f_->on_command = [&](const QByteArray&) {
        in_recall = in_recall && state().recall_in_progress;
    };
    modes().crea_records_realtime();
    QCOMPARE(f_->commands(), commands);
    QCOMPARE(panel().fsat, fsat);
    QCOMPARE(panel().locopt, (std::array{direct, !direct}));
    QVERIFY(panel().ol_freq_enabled);
    QVERIFY(in_recall);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::oscillator_of_the_plan_data() {
    QTest::addColumn<QVariant>("number");
    QTest::addColumn<QString>("shown");
    QTest::newRow("first") << QVariant(0) << "9750";
    QTest::newRow("second") << QVariant(1) << "10750.5";
    QTest::newRow("third") << QVariant(2) << "10600";
    QTest::newRow("fourth") << QVariant(3) << "10600";
    QTest::newRow("none is the first") << QVariant(7) << "9750";
    QTest::newRow("empty") << QVariant() << "10600";
}

void ModesTest::oscillator_of_the_plan() {
    QFETCH(QVariant, number);
    QFETCH(QString, shown);
    change_program({{"loc_osc0", number}});
    modes().crea_records_realtime();
    QCOMPARE(panel().ol_freq, shown);
}

void ModesTest::bandwidth_of_the_program_data() {
    QTest::addColumn<bool>("chosen");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("by default") << false << QVariant(27) << "36";
    QTest::newRow("its own") << true << QVariant(27) << "27";
    QTest::newRow("two digits") << true << QVariant(8) << "08";
    QTest::newRow("never set") << true << QVariant() << "36";
    QTest::newRow("none") << true << QVariant(0) << "36";
}

void ModesTest::bandwidth_of_the_program() {
    QFETCH(bool, chosen);
    QFETCH(QVariant, stored);
    QFETCH(QString, shown);
    f_->program.corrected.plan_width = chosen;
    panel().chbws = "36";
    change_program({{"satchbw", stored}});
    modes().crea_records_realtime();
    QCOMPARE(panel().chbws, shown);
    QCOMPARE(panel().mer_maxd, QString("28"));
}

void ModesTest::noise_boxes_begin_at_the_frequency_of_the_program() {
    panel().noise_freqa = "1000.0";
    panel().noise_freqd = "1025.0";
    f_->link.commands_suspended = true;
    modes().crea_records_realtime();
    QCOMPARE(panel().noise_freqa, QString("11727.5"));
    QCOMPARE(panel().noise_freqd, QString("11727.5"));
}

void ModesTest::presentation_of_the_program_data() {
    QTest::addColumn<bool>("digital_before");
    QTest::addColumn<QVariant>("sat_ad");
    QTest::addColumn<QString>("frames");
    QTest::newRow("analog") << false << QVariant(0) << analog_frames();
    QTest::newRow("digital to analog") << true << QVariant(0) << analog_frames();
    QTest::newRow("analog to digital") << false << QVariant(1) << digital_frames();
    QTest::newRow("digital") << true << QVariant(1) << digital_frames();
    for (const int other : {2, 3, -1}) {
        QTest::addRow("%d, analog stays", other) << false << QVariant(other) << analog_frames();
        QTest::addRow("%d, digital stays", other) << true << QVariant(other) << digital_frames();
    }
    QTest::newRow("empty, analog stays") << false << QVariant() << analog_frames();
    QTest::newRow("empty, digital stays") << true << QVariant() << digital_frames();
}

void ModesTest::presentation_of_the_program() {
    QFETCH(bool, digital_before);
    QFETCH(QVariant, sat_ad);
    QFETCH(QString, frames);
    if (digital_before) modes().digitalmode();
    change_program({{"sat_ad", sat_ad}});
    modes().crea_records_realtime();
    QCOMPARE(this->frames(), frames);
    QCOMPARE(panel().prog_num, QString("007"));
    QCOMPARE(panel().lev_mina, QString("35"));
}

void ModesTest::digital_program_without_the_satellite_frame() {
    panel().sat_opt_visible = false;
    panel().locopt = {false, true};
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(frames(), analog_frames());
    QCOMPARE(panel().fsat, QString("11727.5"));
    QCOMPARE(panel().k22_state, 0);
    QCOMPARE(panel().mer_maxd, QString("28"));
}

void ModesTest::program_that_is_not_monitored_data() {
    QTest::addColumn<QVariant>("monitor_state");
    QTest::newRow("0") << QVariant(0);
    QTest::newRow("2") << QVariant(2);
    QTest::newRow("-1") << QVariant(-1);
    QTest::newRow("10") << QVariant(10);
    QTest::newRow("empty") << QVariant();
}

void ModesTest::program_that_is_not_monitored() {
    QFETCH(QVariant, monitor_state);
    change_program({{"monitor_state", monitor_state}});
    panel().prog_num = "before";
    panel().lev_mina = "before";
    const QStringList before = everything_shown();
    modes().crea_records_realtime();
    QCOMPARE(everything_shown(), before);
    QCOMPARE(f_->port.opens, 0);
    QVERIFY(!state().recall_in_progress);
}

}  // namespace m47::realtime
