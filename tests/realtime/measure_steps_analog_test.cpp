// SPDX-License-Identifier: GPL-3.0-or-later
// The analog steps.
#include "measure_steps_test.h"

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

}  // namespace m47::realtime
