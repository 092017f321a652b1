// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_cycle_test.h"

namespace m47::realtime {

void MeasureCycleTest::measure_and_store() {
    f_->rules.cycle.measure();
    f_->rules.cycle.storemeas();
}

void MeasureCycleTest::show_digital() {
    panel().satdigmea_visible = true;
    state().meas_mode = kDigitalMode;
}

void MeasureCycleTest::tick(std::initializer_list<DigitalMeasure> measures) {
    for (const DigitalMeasure measure : measures) panel().meas_stated[measure] = true;
}

QString MeasureCycleTest::row(int number) {
    QStringList cells;
    for (int column = 0; column < measurement::PageStore::kColumns; ++column)
        cells += page().index(number, column).data().toString();
    return cells.join(u'|');
}

QByteArray MeasureCycleTest::log_bytes() {
    QFile file(f_->path("day.log"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

void MeasureCycleTest::init() {
    f_ = std::make_unique<RealtimeFixture>();
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 58.3";
    f_->values["LEVDCP?"] = "P 61.5";
    f_->values["BERQPSK?"] = kQpskLines;
    panel().chbws = "8";
}

void MeasureCycleTest::analog_measurement() {
    f_->rules.log.open(f_->path("day.log"), page());
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_mina = "30";
    panel().lev_maxa = "80";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 0, 0, 10}));
    QCOMPARE(panel().leva, QString("58.3"));
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::green}}));
    QCOMPARE(page().rowCount(), 2);
    QCOMPARE(row(), QString("21/11/26|10:00:01|1000.0|10600|58.3||||||PASS"));
    QCOMPARE(log_bytes(),
             QByteArray("21/11/26\t10:00:01\t1000.0\t10600\t58.3\t\t\t\t\t\tPASS\r\n"));
}

void MeasureCycleTest::digital_measurement() {
    f_->rules.log.open(f_->path("day.log"), page());
    show_digital();
    tick({kDcpLevel, kChber, kPvBer, kCfo, kMer, kRu});
    panel().alarm_stated.fill(true);
    panel().lev_mind = "30";
    panel().lev_maxd = "80";
    panel().mer_mind = "13";
    panel().mer_maxd = "20";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?", "FREQ 1000.0", "ATTEN 00",
                                          "SYMBRATEQPSK 27500", "BERQPSK", "BERQPSK?", "MEASURE"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 0, 0, 0, 10, 0, 0, 0, 0, 0, 0, 50, 0}));
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(panel().cndlev, kEight);
    QCOMPARE(panel().noisedlev, kEight);
    QCOMPARE(panel().rucomune, kSix);
    QVERIFY(panel().alarm_light ==
            lamps({{0, LampColour::green}, {2, LampColour::green}, {3, LampColour::red}}));
    QCOMPARE(row(), QString("21/11/26|10:00:06|1000.0|10600|61.5|2.0E-4|<1.0E-8|1.25|12.3||FAIL"));
    QCOMPARE(log_bytes(), QByteArray("21/11/26\t10:00:06\t1000.0\t10600\t61.5\t2.0E-4\t<1.0E-8\t"
                                     "1.25\t12.3\t\tFAIL\r\n"));
}

void MeasureCycleTest::digital_measurement_in_another_unit_data() {
    QTest::addColumn<int>("unit");
    QTest::newRow("dBmV") << 1;
    QTest::newRow("dBm") << 2;
}

void MeasureCycleTest::digital_measurement_in_another_unit() {
    QFETCH(int, unit);
    f_->rules.modes.cmdlev_Click(unit);
    f_->commands();
    show_digital();
    tick({kDcpLevel});
    f_->values["LEVANL?"] = "L 80.1";
    f_->values["LEVDCP?"] = "P -47.5";
    measure_and_store();
    QCOMPARE(f_->commands(),
             (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "UNIT 00", "ATTEN?",
                          "LEVANL?", "ATTEN 3", QString("UNIT 0%1").arg(unit), "LEVDCP?"}));
    QCOMPARE(results(), QString("1000.0|10600|-47.5||||||"));
    QCOMPARE(f_->program.unit_index, unit);
}

void MeasureCycleTest::complete_digital_measurement() {
    f_->values["LEVCND?"] = " 12.5";
    f_->raw["LEVDCP?1100.0"] = "LEVDCP?1100.0\rDCP28.3\rOK\r";
    f_->program.corrected.complete = true;
    panel().noise_freqd = "1100";
    show_digital();
    panel().meas_stated.fill(true);
    panel().alarm_stated.fill(true);
    panel().lev_mind = panel().cn_mind = panel().mer_mind = "5";
    panel().lev_maxd = panel().cn_maxd = panel().mer_maxd = "80";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08",
                                          // channel power
                                          "ATTEN 6", "ATTEN?", "LEVANL?", "LEVDCP?",
                                          // C/N
                                          "ATTEN 6", "MARKER 1 1", "LEVCND?",
                                          // noise
                                          "FREQ 1100.0", "ATTEN 6", "ATTEN?", "LEVANL?",
                                          "LEVDCP?1100.0", "FREQ 1000.0",
                                          // QPSK
                                          "FREQ 1000.0", "ATTEN 00", "SYMBRATEQPSK 27500",
                                          "BERQPSK", "BERQPSK?", "MEASURE"}));
    QCOMPARE(panel().cndlev, QString("12.5"));
    QCOMPARE(panel().noisedlev, QString("28.3"));
    QVERIFY(state().cn_done);
    QVERIFY(panel().alarm_light == lamps({{0, LampColour::green},
                                          {1, LampColour::green},
                                          {2, LampColour::green},
                                          {3, LampColour::green}}));
    // C/N and noise are shown, never stored.
    QCOMPARE(results(), QString("1000.0|10600|61.5|2.0E-4|<1.0E-8|1.25|12.3||PASS"));
}

void MeasureCycleTest::complete_analog_measurement() {
    f_->values["LEVCNA?"] = "CN 12.5";
    f_->program.corrected.complete = true;
    panel().noise_freqa = "1100";
    panel().meas_statea.fill(true);
    panel().alarm_statea.fill(true);
    panel().lev_mina = "30";
    panel().lev_maxa = "80";
    panel().cn_maxa = "10";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?", "ATTEN 6",
                                          "MARKER 1 0", "LEVCNA?", "FREQ 1100.0", "LEVANL?"}));
    QCOMPARE(panel().cnalev, QString("12.5"));
    QCOMPARE(panel().noisealev, QString("L 58.3"));
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::green}, {5, LampColour::red}}));
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||FAIL"));
}

void MeasureCycleTest::without_a_link_only_the_lamps_go_out() {
    f_->link.port_connected = false;
    panel().meas_statea[kLevel] = true;
    panel().leva = "before";
    panel().lev_mina = "5";
    panel().alarm_light.fill(LampColour::red);
    state().alarm_raised = state().cn_done = true;
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({}));
    QVERIFY(!state().alarm_raised);
    QVERIFY(!state().cn_done);
    QCOMPARE(panel().leva, QString("before"));
    QCOMPARE(panel().lev_mina, QString("5"));
    QCOMPARE(page().measurements(), 0);
    QCOMPARE(f_->port.opens, 0);
}

void MeasureCycleTest::with_no_measure_ticked_only_the_lamps_go_out() {
    f_->rules.log.open(f_->path("day.log"), page());
    panel().leva = "before";
    panel().lev_mina = "5";
    panel().alarm_light.fill(LampColour::red);
    state().alarm_raised = state().cn_done = true;
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({}));
    QVERIFY(!state().alarm_raised);
    QVERIFY(!state().cn_done);
    QCOMPARE(panel().leva, QString("before"));
    QCOMPARE(panel().lev_mina, QString("5"));
    QCOMPARE(page().measurements(), 0);
    QCOMPARE(log_bytes(), QByteArray("no such file"));
    QCOMPARE(f_->port.opens, 0);
}

void MeasureCycleTest::results_are_blanked_first() {
    QString* const eight[] = {&panel().leva,   &panel().cnalev, &panel().noisealev,
                              &panel().dcplev, &panel().cndlev, &panel().noisedlev};
    QString* const six[] = {&panel().bercomune, &panel().pvbercomune, &panel().cfcomune,
                            &panel().mercomune, &panel().rucomune};
    for (QString* result : eight) *result = "before";
    for (QString* result : six) *result = "before";
    panel().meas_statea[kLevel] = true;
    bool blank_at_start = false;
    f_->on_command = [&](const QByteArray& command) {
        if (command != "MEASURE") return;
        blank_at_start = true;
        for (const QString* result : eight) blank_at_start = blank_at_start && *result == kEight;
        for (const QString* result : six) blank_at_start = blank_at_start && *result == kSix;
    };
    f_->rules.cycle.measure();
    QVERIFY(blank_at_start);
    QCOMPARE(panel().leva, QString("58.3"));
}

void MeasureCycleTest::limits_are_clamped_by_the_unit_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("minimum");
    QTest::addColumn<QString>("maximum");
    QTest::newRow("dBuV") << 0 << "20"
                          << "120";
    QTest::newRow("dBmV") << 1 << "-40"
                          << "60";
    QTest::newRow("dBm") << 2 << "-89"
                         << "11";
}

void MeasureCycleTest::limits_are_clamped_by_the_unit() {
    QFETCH(int, unit);
    QFETCH(QString, minimum);
    QFETCH(QString, maximum);
    f_->rules.modes.cmdlev_Click(unit);
    panel().meas_statea[kLevel] = true;
    panel().lev_mina = panel().lev_mind = "-100";
    panel().lev_maxa = panel().lev_maxd = "400";
    f_->rules.cycle.measure();
    QCOMPARE(panel().lev_mina, minimum);
    QCOMPARE(panel().lev_maxa, maximum);
    QCOMPARE(panel().lev_mind, QString("-100"));
    QCOMPARE(panel().lev_maxd, QString("400"));
}

void MeasureCycleTest::a_level_equal_to_both_limits_fails() {
    f_->values["LEVANL?"] = "L 30";
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_mina = panel().lev_maxa = "30";
    measure_and_store();
    QCOMPARE(panel().lev_mina, QString("30"));
    QCOMPARE(panel().lev_maxa, QString("30"));
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::red}}));
    QCOMPARE(results(), QString("1000.0|10600|30||||||FAIL"));
}

void MeasureCycleTest::an_alarm_without_limits_checks_nothing_where_chosen() {
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    measure_and_store();
    QCOMPARE(results(0), QString("1000.0|10600|58.3||||||FAIL"));
    f_->program.corrected.empty_alarm = true;
    panel().lev_mina = " ";
    panel().lev_maxa = "";
    measure_and_store();
    QCOMPARE(panel().lev_mina, QString(" "));
    QCOMPARE(panel().lev_maxa, QString());
    QVERIFY(panel().alarm_light == lamps({}));
    QCOMPARE(results(1), QString("1000.0|10600|58.3||||||"));
    // Beside an alarm with limits the row is judged by that one.
    show_digital();
    tick({kDcpLevel, kMer, kChber});
    panel().alarm_stated = {true, false, false, true};
    panel().lev_mind = "30";
    panel().lev_maxd = "80";
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({{0, LampColour::green}}));
    QVERIFY(results(2).endsWith("|PASS"));
}

void MeasureCycleTest::an_alarm_with_one_limit_checks_that_one_where_chosen() {
    f_->program.corrected.empty_alarm = true;
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"60", "", "FAIL"}, {"50", "", "PASS"}, {"", "60", "PASS"}, {"", "50", "FAIL"}};
    int number = 0;
    for (const auto& [minimum, maximum, verdict] : cases) {
        panel().lev_mina = minimum;
        panel().lev_maxa = maximum;
        measure_and_store();
        QCOMPARE(results(number++).section(u'|', -1), QString(verdict));
        QCOMPARE(panel().lev_mina, QString(minimum));
        QCOMPARE(panel().lev_maxa, QString(maximum));
    }
}

void MeasureCycleTest::a_cycle_that_ends_at_the_noise_is_told() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    panel().meas_statea[kLevel] = true;
    f_->rules.measure_once();
    QCOMPARE(told, QStringList());
    panel().meas_statea[kCnAnalog] = true;
    f_->values["LEVCNA?"] = "CN 30.0";
    for (int time = 0; time < 2; ++time) {
        f_->rules.measure_once();
        QCOMPARE(told, QStringList("C/N and noise not measured: tick Complete C/N and noise, or "
                                   "untick them"));
    }
    told.clear();
    f_->program.corrected.complete = true;
    f_->rules.measure_once();
    QCOMPARE(told, QStringList());
}

void MeasureCycleTest::an_alarm_without_limits_is_told() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    const QString fails("An alarm without limits fails: give it limits");
    const QString nothing("An alarm without limits checks nothing");
    panel().meas_statea[kLevel] = true;
    // Neither one that is not ticked nor one of the frame that is not shown costs anything.
    panel().alarm_stated[0] = true;
    panel().lev_mind = panel().lev_maxd = panel().lev_mina = "";
    f_->rules.measure_once();
    panel().alarm_statea[0] = true;
    panel().lev_mina = "30";
    panel().lev_maxa = "80";
    f_->rules.measure_once();
    QCOMPARE(told, QStringList());
    for (int time = 0; time < 2; ++time) {
        panel().lev_mina = panel().lev_maxa = "";
        f_->rules.measure_once();
        QCOMPARE(told, QStringList(fails));
    }
    f_->program.corrected.empty_alarm = true;
    for (int time = 0; time < 2; ++time) {
        panel().lev_mina = panel().lev_maxa = "";
        f_->rules.measure_once();
        QCOMPARE(told, QStringList({fails, nothing}));
    }
    f_->program.costs.begin_anew();
    f_->rules.measure_once();
    QCOMPARE(told, QStringList({fails, nothing, nothing}));
    // One that is not ticked is none.
    panel().alarm_statea[0] = false;
    f_->program.costs.begin_anew();
    f_->rules.measure_once();
    QCOMPARE(told.size(), 3);
}

void MeasureCycleTest::digital_cn_ends_the_cycle() {
    show_digital();
    panel().meas_stated.fill(true);
    panel().alarm_stated.fill(true);
    panel().lev_maxd = "80";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?", "ATTEN 6", "MARKER 1 1"}));
    QVERIFY(!state().cn_done);
    QVERIFY(panel().alarm_light == lamps({{0, LampColour::green}}));
    QCOMPARE(panel().bercomune, kSix);
    QCOMPARE(panel().mercomune, kSix);
    // The status speaks of the checks that ran.
    QCOMPARE(results(), QString("1000.0|10600|61.5||||||PASS"));
}

void MeasureCycleTest::digital_noise_ends_the_cycle() {
    show_digital();
    tick({kDcpLevel, kNoiseDigital, kChber, kMer});
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?"}));
    QCOMPARE(panel().noisedlev, kEight);
    QCOMPARE(panel().bercomune, kSix);
    QCOMPARE(results(), QString("1000.0|10600|61.5||||||"));
}

void MeasureCycleTest::analog_cn_ends_the_cycle() {
    panel().meas_statea.fill(true);
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?", "ATTEN 6",
                                          "MARKER 1 0"}));
    QCOMPARE(panel().cnalev, kEight);
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||"));
}

void MeasureCycleTest::analog_noise_ends_the_cycle() {
    panel().meas_statea = {true, false, true};
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(panel().noisealev, kEight);
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||"));
}

void MeasureCycleTest::qpsk_label_missing_ends_the_cycle_data() {
    QTest::addColumn<QByteArray>("missing");
    QTest::addColumn<QString>("kept");
    QTest::newRow("CHBER") << QByteArray("CHBER :") << "|||";
    QTest::newRow("PvBER") << QByteArray("PvBER :") << "2.0E-4|||";
    QTest::newRow("CFO") << QByteArray("CFO   :") << "2.0E-4|<1.0E-8||";
    QTest::newRow("MER") << QByteArray("MER   :") << "2.0E-4|<1.0E-8|1.25|";
}

void MeasureCycleTest::qpsk_label_missing_ends_the_cycle() {
    QFETCH(QByteArray, missing);
    QFETCH(QString, kept);
    f_->values["BERQPSK?"] = QByteArray(kQpskLines).replace(missing, "");
    show_digital();
    tick({kChber, kPvBer, kCfo, kMer});
    measure_and_store();
    QCOMPARE(f_->commands().last(), QString("BERQPSK?"));
    QCOMPARE(results(), QString("1000.0|10600||%1||").arg(kept));
    QVERIFY(f_->link.port_connected);
}

void MeasureCycleTest::other_measures_decide_whether_there_is_a_cycle() {
    // Ticked in the presentation that is not in force: the meter is tuned and a row written.
    panel().meas_stated[kRu] = true;
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0"}));
    QCOMPARE(results(0), QString("1000.0|10600|||||||"));
    show_digital();
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08"}));
    QCOMPARE(results(1), QString("1000.0|10600|||||||"));
}

void MeasureCycleTest::error_rates_that_start_nothing() {
    show_digital();
    tick({kPvBer, kCfo});
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "BERQPSK?"}));
    QCOMPARE(results(), QString("1000.0|10600|||<1.0E-8|1.25|||"));
}

}  // namespace m47::realtime

QTEST_GUILESS_MAIN(m47::realtime::MeasureCycleTest)
