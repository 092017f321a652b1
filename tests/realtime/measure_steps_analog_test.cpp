// SPDX-License-Identifier: GPL-3.0-or-later
// The analog steps.
#include "measure_steps_test.h"

#include <functional>

namespace m47::realtime {

void MeasureStepsTest::analog_level_data() {
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("green");
    // Limits 20 and 80.
    QTest::newRow("in range") << QByteArray(" 58.3 ") << "58.3" << true;
    QTest::newRow("letter in front") << QByteArray("L 58.3") << "58.3" << true;
    QTest::newRow("below the range") << QByteArray(" <20.5") << "<20.5" << true;
    QTest::newRow("above the range") << QByteArray(" >80.0") << ">80.0" << false;
    QTest::newRow("no number") << QByteArray(" what") << "what" << false;
}

void MeasureStepsTest::analog_level() {
    QFETCH(QByteArray, reply);
    QFETCH(QString, shown);
    QFETCH(bool, green);
    f_->values["LEVANL?"] = reply;
    panel().alarm_statea[0] = true;
    panel().lev_mina = "20";
    panel().lev_maxa = "80";
    QStringList repainted;
    panel().on_repaint = [&] { repainted += panel().leva; };
    steps().carr_satanl();
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 6", "LEVANL?"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 10}));
    QCOMPARE(repainted, (QStringList{shown, shown}));
    QVERIFY(lamp_is(4, green ? LampColour::green : LampColour::red));
}

void MeasureStepsTest::analog_cn_without_a_frequency_of_its_own() {
    panel().noise_freqa = "1100.0";
    panel().cnalev = "before";
    panel().alarm_statea[1] = true;
    QVERIFY(faults([this] { steps().cn_satanl(); }));
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 6", "MARKER 1 0"}));
    QVERIFY(lamp_is(5, LampColour::grey));
    QCOMPARE(panel().cnalev, QString("before"));
}

void MeasureStepsTest::analog_cn_data() {
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("green");
    // Limits 5 and 20.
    QTest::newRow("in range") << QByteArray("CN 12.5") << "12.5" << true;
    QTest::newRow("blanks kept") << QByteArray("CN  12.5 ") << " 12.5 " << true;
    QTest::newRow("at the minimum") << QByteArray("CN 5") << "5" << false;
    QTest::newRow("below the range") << QByteArray("CN <12.5") << "<12.5" << true;
    QTest::newRow("above the range") << QByteArray("CN >20") << ">20" << false;
    QTest::newRow("three characters") << QByteArray("CN ") << "" << false;
}

void MeasureStepsTest::analog_cn() {
    QFETCH(QByteArray, reply);
    QFETCH(QString, shown);
    QFETCH(bool, green);
    f_->values["LEVCNA?"] = reply;
    f_->program.corrected.complete = true;
    panel().locopt = {false, true};
    panel().noise_freqa = "100";
    panel().alarm_statea[1] = true;
    panel().cn_mina = "5";
    panel().cn_maxa = "20";
    steps().cn_satanl();
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 6", "MARKER 1 0", "LEVCNA?"}));
    QCOMPARE(panel().noise_freqa, QString("100"));
    QCOMPARE(panel().cnalev, shown);
    QVERIFY(lamp_is(5, green ? LampColour::green : LampColour::red));
}

void MeasureStepsTest::analog_noise_without_a_frequency_of_its_own() {
    panel().noise_freqa = "1100.0";
    QVERIFY(faults([this] { steps().levn_satanl(); }));
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(f_->clock.elapsed(), 0.0);
}

void MeasureStepsTest::analog_noise() {
    f_->values["LEVANL?"] = " L <28.3 ";
    f_->program.corrected.complete = true;
    panel().noise_freqa = "1100.0";
    panel().alarm_statea.fill(true);
    steps().levn_satanl();
    QCOMPARE(f_->commands(), (QStringList{"FREQ 1100.0", "LEVANL?"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 10}));
    QCOMPARE(panel().noisealev, QString("L <28.3"));
    QVERIFY((panel().alarm_light == std::array<LampColour, 6>{}));
}

void MeasureStepsTest::a_spoilt_answer_is_no_value_data() {
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("step");
    const auto row = [](const char* name, const char* command, const char* answer, int step) {
        QTest::newRow(name) << QByteArray(command) << QByteArray(answer) << step;
    };
    row("first digit of the level to range by", "LEVANL?", "L #8.3", 0);
    row("digital noise", "LEVDCP?1100.0", "DCP2#.3", 1);
    row("analog C/N", "LEVCNA?", "CN 1#.5", 2);
    row("analog noise", "LEVANL?", " L 2#.3", 3);
}

/// One character of it came as another one.
void MeasureStepsTest::a_spoilt_answer_is_no_value() {
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, answer);
    QFETCH(int, step);
    f_->program.corrected.complete = true;
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 70";
    f_->raw["LEVDCP?1100.0"] = "LEVDCP?1100.0\rDCP28.3\rOK\r";
    panel().noise_freqa = panel().noise_freqd = "1100.0";
    if (command == "LEVDCP?1100.0")
        f_->raw[command] = command + "\r" + answer + "\rOK\r";
    else
        f_->values[command] = answer;
    const std::function<void()> all[] = {
        [&] { steps().format_att(); }, [&] { steps().levn_satdig(); }, [&] { steps().cn_satanl(); },
        [&] { steps().levn_satanl(); }};
    QVERIFY(faults(all[step]));
    QVERIFY(!steps().outcome.reading(measurement::Quantity::noise).measured());
    QVERIFY(!steps().outcome.reading(measurement::Quantity::cn).measured());
}

void MeasureStepsTest::a_value_keeps_the_unit_that_the_meter_was_asked_in() {
    f_->rules.modes.cmdlev_Click(kDbm);
    f_->values["LEVANL?"] = "L -58.3";
    steps().carr_satanl();
    QVERIFY(steps().outcome.unit == kDbm);
    steps().outcome.unit.reset();
    f_->program.corrected.complete = true;
    panel().noise_freqa = "1100.0";
    steps().levn_satanl();
    QVERIFY(steps().outcome.unit == kDbm);
}

}  // namespace m47::realtime
