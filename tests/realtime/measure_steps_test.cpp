// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_steps_test.h"

namespace m47::realtime {

bool MeasureStepsTest::lamp_is(std::size_t lamp, LampColour colour) {
    return panel().alarm_light[lamp] == colour;
}

void MeasureStepsTest::attenuator_data() {
    QTest::addColumn<QByteArray>("steps");
    QTest::addColumn<QByteArray>("level");
    QTest::addColumn<QString>("raised");
    const auto row = [](const char* name, const char* steps, const char* level,
                        const char* raised) {
        QTest::newRow(name) << QByteArray(steps) << QByteArray(level) << QString(raised);
    };
    row("exactly at the step", "2", "L 80.0", "");
    row("above the step", "2", "L 80.1", "ATTEN 3");
    row("below the step", "2", "L 30.0", "");
    row("no attenuation, at the step", "0", "L 60", "");
    row("no attenuation, above", "0", "L 60.01", "ATTEN 1");
    row("one step only", "0", "L 119.9", "ATTEN 1");
    row("past the usual ones", "6", "L 120.1", "ATTEN 7");
    row("two digits", "9", "L 150.1", "ATTEN 10");
    row("steps with a blank", " 2", "L 80.1", "ATTEN 3");
    row("steps no number", "what", "L 60.1", "ATTEN 1");
    row("above the range", "2", "L>80.1", "");
    row("second character a digit", "2", " 80.1", "");
    row("level no number", "2", "L what", "");
    row("one character", "2", "L", "");
}

void MeasureStepsTest::attenuator() {
    QFETCH(QByteArray, steps);
    QFETCH(QByteArray, level);
    QFETCH(QString, raised);
    f_->values["ATTEN?"] = steps;
    f_->values["LEVANL?"] = level;
    this->steps().format_att();
    QStringList expected{"ATTEN 6", "ATTEN?", "LEVANL?"};
    if (!raised.isEmpty()) expected += raised;
    QCOMPARE(f_->commands(), expected);
}

void MeasureStepsTest::attenuator_pauses() {
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 80.1";
    steps().format_att();
    f_->link.send("AFTER");
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 6", "ATTEN?", "LEVANL?", "ATTEN 3", "AFTER"}));
    const QList<double>& pauses = f_->port.pauses;
    QCOMPARE(pauses.size(), 5);
    QCOMPARE(pauses[0], 0.0);
    QVERIFY2(is_pause_of(1, pauses[1]), qPrintable(QString::number(pauses[1])));
    QCOMPARE(pauses[2], 0.0);
    QCOMPARE(pauses[3], 0.0);
    QVERIFY2(is_pause_of(0.1, pauses[4]), qPrintable(QString::number(pauses[4])));
}

void MeasureStepsTest::attenuator_in_another_unit_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QByteArray>("level");
    QTest::addColumn<QStringList>("commands");
    QTest::newRow("dBmV") << 1 << QByteArray("L 80.0")
                          << QStringList{"ATTEN 6", "UNIT 00", "ATTEN?", "LEVANL?", "UNIT 01"};
    QTest::newRow("dBm") << 2 << QByteArray("L 80.0")
                         << QStringList{"ATTEN 6", "UNIT 00", "ATTEN?", "LEVANL?", "UNIT 02"};
    QTest::newRow("dBmV, one step more")
        << 1 << QByteArray("L 80.1")
        << QStringList{"ATTEN 6", "UNIT 00", "ATTEN?", "LEVANL?", "ATTEN 3", "UNIT 01"};
    QTest::newRow("dBm, above the range")
        << 2 << QByteArray("L>80.1")
        << QStringList{"ATTEN 6", "UNIT 00", "ATTEN?", "LEVANL?", "UNIT 02"};
}

void MeasureStepsTest::attenuator_in_another_unit() {
    QFETCH(int, unit);
    QFETCH(QByteArray, level);
    QFETCH(QStringList, commands);
    f_->rules.modes.cmdlev_Click(unit);
    QCOMPARE(f_->commands(), QStringList{QString("UNIT 0%1").arg(unit)});
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = level;
    steps().format_att();
    QCOMPARE(f_->commands(), commands);
    QCOMPARE(panel().cmdlev, unit);
    QCOMPARE(f_->program.unit_index, unit);
}

void MeasureStepsTest::channel_power_data() {
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("green");
    // Limits 20 and 80.
    QTest::newRow("in range") << QByteArray(" 58.3 ") << "58.3" << true;
    QTest::newRow("letter in front") << QByteArray("P 58.3") << "58.3" << true;
    QTest::newRow("below the range") << QByteArray(" <20.5") << "<20.5" << true;
    QTest::newRow("above the range") << QByteArray(" >79.5") << ">79.5" << true;
    QTest::newRow("at the minimum") << QByteArray(" <20.0") << "<20.0" << false;
    QTest::newRow("at the maximum") << QByteArray(" >80") << ">80" << false;
    QTest::newRow("no number") << QByteArray(" what") << "what" << false;
    QTest::newRow("one character") << QByteArray("5") << "" << false;
}

void MeasureStepsTest::channel_power() {
    QFETCH(QByteArray, reply);
    QFETCH(QString, shown);
    QFETCH(bool, green);
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 70";
    f_->values["LEVDCP?"] = reply;
    panel().alarm_stated[0] = true;
    panel().lev_mind = "20";
    panel().lev_maxd = "80";
    steps().carr_satdig();
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 6", "ATTEN?", "LEVANL?", "LEVDCP?"}));
    QCOMPARE(panel().dcplev, shown);
    QVERIFY(lamp_is(0, green ? LampColour::green : LampColour::red));
    QCOMPARE(f_->state().alarm_raised, !green);
}

void MeasureStepsTest::channel_power_is_shown_before_the_next_command() {
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 70";
    f_->values["LEVDCP?"] = " 58.3";
    panel().alarm_stated[0] = true;
    panel().lev_maxd = "80";
    QList<std::pair<QString, LampColour>> shown;
    panel().on_repaint = [&] { shown.append({panel().dcplev, panel().alarm_light[0]}); };
    steps().carr_satdig();
    QCOMPARE(shown.size(), 2);
    QCOMPARE(shown[0].first, QString("58.3"));
    QVERIFY(shown[0].second == LampColour::grey);
    QVERIFY(shown[1].second == LampColour::green);
}

void MeasureStepsTest::channel_power_after_a_refusal_counts_0() {
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 70";
    f_->refuse("LEVDCP?");
    panel().dcplev = "before";
    panel().alarm_stated[0] = true;
    panel().lev_mind = "-1";
    panel().lev_maxd = "1";
    steps().carr_satdig();
    QCOMPARE(panel().dcplev, QString());
    QVERIFY(lamp_is(0, LampColour::green));
}

void MeasureStepsTest::digital_cn_without_a_frequency_of_its_own() {
    panel().noise_freqd = "1100.0";
    panel().cndlev = "before";
    panel().alarm_stated[1] = true;
    QVERIFY(faults([this] { steps().cn_satdig(); }));
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 6", "MARKER 1 1"}));
    QVERIFY(!f_->state().cn_done);
    QVERIFY(lamp_is(1, LampColour::grey));
    QCOMPARE(panel().cndlev, QString("before"));
    QCOMPARE(panel().noise_freqd, QString("1100.0"));
}

void MeasureStepsTest::digital_cn_data() {
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<double>("number");
    QTest::addColumn<bool>("green");
    // Limits 5 and 20.
    QTest::newRow("in range") << QByteArray(" 12.5 ") << "12.5" << 12.5 << true;
    QTest::newRow("below the range") << QByteArray("<12.5") << "<12.5" << 12.5 << true;
    QTest::newRow("above the range") << QByteArray(">20.0") << ">20.0" << 20.0 << false;
    QTest::newRow("first digit skipped") << QByteArray("12.5") << "12.5" << 2.5 << false;
    QTest::newRow("no number") << QByteArray("what") << "what" << 0.0 << false;
}

void MeasureStepsTest::digital_cn() {
    QFETCH(QByteArray, reply);
    QFETCH(QString, shown);
    QFETCH(double, number);
    QFETCH(bool, green);
    f_->values["LEVCND?"] = reply;
    f_->program.corrected.complete = true;
    panel().noise_freqd = "5000";
    panel().alarm_stated[1] = true;
    panel().cn_mind = "5";
    panel().cn_maxd = "20";
    steps().cn_satdig();
    // The frequency of the box is neither sent nor changed.
    QCOMPARE(f_->commands(), (QStringList{"ATTEN 6", "MARKER 1 1", "LEVCND?"}));
    QCOMPARE(panel().noise_freqd, QString("5000"));
    QCOMPARE(panel().cndlev, shown);
    const measurement::Reading kept = steps().outcome.reading(measurement::Quantity::cn);
    // What is no number is shown, and kept as not measured.
    QCOMPARE(kept.measured(), number != 0);
    if (kept.measured()) QCOMPARE(kept.value, static_cast<float>(number));
    QCOMPARE(kept.mark == measurement::RangeMark::above, shown.startsWith(u'>'));
    QCOMPARE(f_->state().cn_value, number);
    QVERIFY(f_->state().cn_done);
    QVERIFY(lamp_is(1, green ? LampColour::green : LampColour::red));
    QCOMPARE(f_->pauses(), (QList<int>{0, 0, 0}));
}

void MeasureStepsTest::digital_noise_without_a_frequency_of_its_own() {
    panel().noise_freqd = "1100.0";
    QVERIFY(faults([this] { steps().levn_satdig(); }));
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(f_->clock.elapsed(), 0.0);
}

void MeasureStepsTest::digital_noise() {
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 80.1";
    f_->raw["LEVDCP?1100.0"] = "LEVDCP?1100.0\rDCP28.3\rOK\r";
    f_->program.corrected.complete = true;
    panel().noise_freqd = "1100.0";
    panel().alarm_stated = {true, true, true, true};
    steps().levn_satdig();
    QCOMPARE(f_->commands(), (QStringList{"FREQ 1100.0", "ATTEN 6", "ATTEN?", "LEVANL?", "ATTEN 3",
                                          "LEVDCP?1100.0", "FREQ 1000.0"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 10, 10, 0, 0, 1, 0}));
    QCOMPARE(panel().noisedlev, QString("28.3"));
    QVERIFY((panel().alarm_light == std::array<LampColour, 6>{}));
    QVERIFY(!f_->state().alarm_raised);
}

void MeasureStepsTest::digital_noise_without_a_line_end() {
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 70";
    f_->raw["LEVDCP?1100.0"] = "LEVDCP?1100.0\rOK\r";
    f_->program.corrected.complete = true;
    panel().noise_freqd = "1100.0";
    panel().noisedlev = "before";
    QVERIFY(faults([this] { steps().levn_satdig(); }));
    QCOMPARE(f_->commands(),
             (QStringList{"FREQ 1100.0", "ATTEN 6", "ATTEN?", "LEVANL?", "LEVDCP?1100.0"}));
    QCOMPARE(panel().noisedlev, QString("before"));
}

void MeasureStepsTest::what_is_no_noise_frequency_is_corrected_before_it_is_sent() {
    f_->program.corrected.complete = true;
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 70";
    f_->raw["LEVDCP?1250.0"] = "LEVDCP?1250.0\rDCP28.3\rOK\r";
    panel().fsat = "1250.0";
    for (const char* typed : {"abc", "12abc", "", "-5", "0"}) {
        panel().noise_freqa = panel().noise_freqd = typed;
        steps().levn_satanl();
        QCOMPARE(f_->commands(), (QStringList{"FREQ 1250.0", "LEVANL?"}));
        steps().levn_satdig();
        QCOMPARE(f_->commands().constFirst(), QString("FREQ 1250.0"));
        QCOMPARE(panel().noise_freqa, QString("1250.0"));
        QCOMPARE(panel().noise_freqd, QString("1250.0"));
    }
}

void MeasureStepsTest::a_noise_frequency_out_of_range_is_sent_as_the_nearest_bound() {
    f_->program.corrected.complete = true;
    f_->values["LEVANL?"] = "L 70";
    panel().noise_freqa = "5000";
    steps().levn_satanl();
    QCOMPARE(f_->commands(), (QStringList{"FREQ 2150.0", "LEVANL?"}));
    // The box stays: it may be right for the next program.
    QCOMPARE(panel().noise_freqa, QString("5000"));
}

void MeasureStepsTest::qpsk_data() {
    QTest::addColumn<QList<int>>("ticked");
    QTest::addColumn<QStringList>("commands");
    const QStringList started{"FREQ 1000.0", "ATTEN 00", "SYMBRATEQPSK 27500",
                              "BERQPSK",     "BERQPSK?", "MEASURE"};
    QTest::newRow("nothing") << QList<int>{} << QStringList{};
    QTest::newRow("level, C/N, noise") << QList<int>{0, 1, 2} << QStringList{};
    QTest::newRow("RU") << QList<int>{7} << QStringList{};
    QTest::newRow("CHBER") << QList<int>{3} << started;
    QTest::newRow("PvBER") << QList<int>{4} << QStringList{"BERQPSK?"};
    QTest::newRow("CFO") << QList<int>{5} << QStringList{"BERQPSK?"};
    QTest::newRow("MER") << QList<int>{6} << started;
    QTest::newRow("PvBER, CFO") << QList<int>{4, 5} << QStringList{"BERQPSK?"};
    QTest::newRow("PvBER, MER") << QList<int>{4, 6} << started;
    QTest::newRow("all") << QList<int>{3, 4, 5, 6, 7} << started;
}

void MeasureStepsTest::qpsk() {
    QFETCH(QList<int>, ticked);
    QFETCH(QStringList, commands);
    f_->values["BERQPSK?"] = qpsk_lines();
    for (const int measure : ticked) panel().meas_stated[static_cast<std::size_t>(measure)] = true;
    steps().qpsk_real();
    QCOMPARE(f_->commands(), commands);
    const QString* const results[] = {&panel().bercomune, &panel().pvbercomune, &panel().cfcomune,
                                      &panel().mercomune};
    for (int k = 0; k < 4; ++k)
        QCOMPARE(*results[k], ticked.contains(k + 3) ? QString::fromLatin1(kFields[k]) : QString());
    QCOMPARE(panel().rucomune, QString());
}

void MeasureStepsTest::qpsk_pauses() {
    f_->values["BERQPSK?"] = qpsk_lines();
    panel().meas_stated[kMer] = true;
    steps().qpsk_real();
    const QList<double>& pauses = f_->port.pauses;
    QCOMPARE(pauses.size(), 6);
    for (const int command : {0, 1, 2, 3, 5}) QCOMPARE(pauses[command], 0.0);
    QVERIFY2(is_pause_of(5, pauses[4]), qPrintable(QString::number(pauses[4])));
}

void MeasureStepsTest::qpsk_values_and_lamps() {
    f_->values["BERQPSK?"] = qpsk_lines();
    panel().meas_stated.fill(true);
    panel().alarm_stated.fill(true);
    panel().mer_mind = "12.3";
    panel().mer_maxd = "20";
    steps().digital_acquire();
    QCOMPARE(f_->commands(), QStringList{"BERQPSK?"});
    using enum LampColour;
    QVERIFY((panel().alarm_light == std::array{grey, grey, green, red, grey, grey}));
    QVERIFY(f_->state().alarm_raised);
}

void MeasureStepsTest::qpsk_values_are_shown_one_by_one() {
    f_->values["BERQPSK?"] = qpsk_lines();
    panel().meas_stated.fill(true);
    QStringList shown;
    panel().on_repaint = [&] {
        shown += panel().bercomune + u'|' + panel().pvbercomune + u'|' + panel().cfcomune + u'|' +
                 panel().mercomune;
    };
    steps().digital_acquire();
    QCOMPARE(shown, (QStringList{" 2.0E-4|||", " 2.0E-4| <1.0E-8||", " 2.0E-4| <1.0E-8| 1.25|",
                                 " 2.0E-4| <1.0E-8| 1.25| 12.3"}));
}

void MeasureStepsTest::qpsk_label_missing_data() {
    QTest::addColumn<int>("missing");
    for (int k = 0; k < 4; ++k) QTest::newRow(kLabels[k].constData()) << k;
}

void MeasureStepsTest::qpsk_label_missing() {
    QFETCH(int, missing);
    f_->values["BERQPSK?"] = qpsk_lines(missing);
    panel().meas_stated.fill(true);
    panel().alarm_stated.fill(true);
    QVERIFY(faults([this] { steps().qpsk_real(); }));
    // The answer is the last thing asked for: the step does not come to its closing command.
    QCOMPARE(f_->commands().last(), QString("BERQPSK?"));
    const QString* const results[] = {&panel().bercomune, &panel().pvbercomune, &panel().cfcomune,
                                      &panel().mercomune};
    for (int k = 0; k < 4; ++k)
        QCOMPARE(*results[k], k < missing ? QString::fromLatin1(kFields[k]) : QString());
    QVERIFY(lamp_is(2, missing > 0 ? LampColour::green : LampColour::grey));
    QVERIFY(lamp_is(3, LampColour::grey));
}

void MeasureStepsTest::qpsk_unticked_label_may_be_missing() {
    f_->values["BERQPSK?"] = "MER   : 12.3";
    panel().meas_stated[kMer] = true;
    steps().digital_acquire();
    QCOMPARE(panel().mercomune, QString(" 12.3"));
}

void MeasureStepsTest::qpsk_range_marks_data() {
    QTest::addColumn<QByteArray>("chber");
    QTest::addColumn<QByteArray>("mer");
    QTest::addColumn<bool>("chber_green");
    QTest::addColumn<bool>("mer_green");
    // Limits 1E-8 to 3E-2 and 5 to 30.
    QTest::newRow("no mark") << QByteArray("2.0E-4") << QByteArray("20.0") << true << true;
    QTest::newRow("below, inside") << QByteArray("<2.0E-4") << QByteArray("<20.0") << true << true;
    QTest::newRow("above, inside") << QByteArray(">2.0E-4") << QByteArray(">20.0") << true << true;
    QTest::newRow("blank before the mark")
        << QByteArray(" <2.0E-4") << QByteArray(" >20.0") << true << true;
    QTest::newRow("at the limits") << QByteArray("<1.0E-8") << QByteArray(">30") << false << false;
}

void MeasureStepsTest::qpsk_range_marks() {
    QFETCH(QByteArray, chber);
    QFETCH(QByteArray, mer);
    QFETCH(bool, chber_green);
    QFETCH(bool, mer_green);
    f_->values["BERQPSK?"] = "CHBER :" + chber + "\rMER   :" + mer;
    panel().meas_stated[kChber] = panel().meas_stated[kMer] = true;
    panel().alarm_stated.fill(true);
    panel().mer_mind = "5";
    panel().mer_maxd = "30";
    steps().digital_acquire();
    // The mark is shown, the number without it compared.
    QCOMPARE(panel().bercomune, QString::fromLatin1(chber));
    QCOMPARE(panel().mercomune, QString::fromLatin1(mer));
    QVERIFY(lamp_is(2, chber_green ? LampColour::green : LampColour::red));
    QVERIFY(lamp_is(3, mer_green ? LampColour::green : LampColour::red));
}

}  // namespace m47::realtime

QTEST_GUILESS_MAIN(m47::realtime::MeasureStepsTest)
