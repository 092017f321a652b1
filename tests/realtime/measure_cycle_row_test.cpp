// SPDX-License-Identifier: GPL-3.0-or-later
// The row of a measurement, what is kept of it, and how one ends early.
#include "measure_cycle_test.h"

namespace m47::realtime {

void MeasureCycleTest::status_data() {
    QTest::addColumn<bool>("level_alarm");
    QTest::addColumn<bool>("other_alarm");
    QTest::addColumn<QString>("maximum");
    QTest::addColumn<QString>("status");
    QTest::newRow("no alarm, far outside") << false << false << "30"
                                           << "";
    QTest::newRow("within") << true << false << "80"
                            << "PASS";
    QTest::newRow("outside") << true << false << "30"
                             << "FAIL";
    QTest::newRow("alarm of a value not measured") << false << true << "30"
                                                   << "PASS";
    QTest::newRow("both, outside") << true << true << "30"
                                   << "FAIL";
}

void MeasureCycleTest::status() {
    QFETCH(bool, level_alarm);
    QFETCH(bool, other_alarm);
    QFETCH(QString, maximum);
    QFETCH(QString, status);
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = level_alarm;
    panel().alarm_stated[3] = other_alarm;
    panel().lev_mina = "25";
    panel().lev_maxa = maximum;
    measure_and_store();
    QCOMPARE(results().section(u'|', 8), status);
}

void MeasureCycleTest::new_results_are_those_of_the_program_shown() {
    panel().results_of_before = true;
    measure_and_store();
    // Nothing was ticked: what is shown is what was there before.
    QVERIFY(panel().results_of_before);
    panel().meas_statea[kLevel] = true;
    measure_and_store();
    QVERIFY(!panel().results_of_before);
}

void MeasureCycleTest::each_cycle_starts_anew() {
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_mina = "30";
    panel().lev_maxa = "50";
    measure_and_store();
    // Lamps and results stay until the next cycle.
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::red}}));
    QVERIFY(state().alarm_raised);
    QCOMPARE(panel().leva, QString("58.3"));
    f_->values["LEVANL?"] = "L 40";
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::green}}));
    QCOMPARE(results(0), QString("1000.0|10600|58.3||||||FAIL"));
    QCOMPARE(results(1), QString("1000.0|10600|40||||||PASS"));
}

void MeasureCycleTest::row_of_the_mode_and_cycle_of_the_frame() {
    show_digital();
    // Coming back to the screen changes the mode, the digital frame stays.
    f_->rules.modes.Form_Activate();
    f_->commands();
    tick({kDcpLevel});
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?"}));
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(results(), QString("1000.0|10600|||||||"));
}

void MeasureCycleTest::row_of_another_mode() {
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_maxa = "80";
    state().meas_mode = 1;
    measure_and_store();
    QCOMPARE(row(), QString("21/11/26|10:00:01|||||||||PASS"));
}

void MeasureCycleTest::each_row_is_announced() {
    QList<QStringList> rows;
    int log_writes = 0;
    f_->rules.cycle.on_row = [&](const QStringList& cells) { rows += cells; };
    f_->rules.cycle.on_log_written = [&](const QString&) { ++log_writes; };
    panel().meas_statea[kLevel] = true;
    measure_and_store();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].join(u'|'), row());
    QCOMPARE(log_writes, 0);
}

void MeasureCycleTest::what_was_sent_and_answered_is_kept_beside_the_row() {
    measurement::Measurement told;
    f_->rules.cycle.on_measured = [&](const measurement::Measurement& measurement) {
        told = measurement;
    };
    panel().meas_statea[kLevel] = true;
    // The unit of the meter is not known before it was told or asked, and no oscillator is in use,
    // whatever stands in the boxes.
    f_->program.unit_index = panel().cmdlev = kDbm;
    measure_and_store();
    QVERIFY(told.mode == measurement::MeasureMode::analog);
    QCOMPARE(*told.frequency, 1000.0F);
    QVERIFY(!told.oscillator && !told.unit && !told.program.known());
    QVERIFY(told.verdict == measurement::Verdict::none);
    QCOMPARE(measurement::reading_text(measurement::Quantity::level,
                                       told.reading(measurement::Quantity::level)),
             QString("58.3"));
    QVERIFY(!told.reading(measurement::Quantity::ber).measured());
    QCOMPARE(measurement::time_text(*told.instant), std::string("2026-11-21 10:00:01"));
    panel().locopt = {false, true};
    panel().fsat = "11778";
    f_->values["FREQ?"] = "11778";
    f_->rules.tuning.locopt_Click(1);
    f_->rules.modes.cmdlev_Click(kDbmv);
    // Typed and not confirmed: the meter knows nothing of it.
    panel().ol_freq = "9750";
    panel().fsat = "11000";
    f_->rules.cycle.measure({}, {"ASTRA", "007"});
    f_->rules.cycle.storemeas();
    QCOMPARE(*told.oscillator, 10600.0F);
    QVERIFY(told.unit == kDbmv);
    QCOMPARE(told.program.text(), QString("ASTRA 007"));
    const measurement::Measurement kept = page().store().measurement(1);
    QVERIFY(kept.oscillator == told.oscillator && kept.unit == kDbmv);
    QCOMPARE(kept.frequency, told.frequency);
    QVERIFY(kept.program == told.program);
}

void MeasureCycleTest::the_digital_level_is_kept_though_the_row_is_analog() {
    show_digital();
    f_->rules.modes.Form_Activate();
    tick({kDcpLevel});
    measure_and_store();
    QCOMPARE(results(), QString("1000.0|10600|||||||"));
    const measurement::Measurement kept = page().store().measurement(0);
    QVERIFY(kept.mode == measurement::MeasureMode::digital);
    QCOMPARE(measurement::reading_text(measurement::Quantity::level,
                                       kept.reading(measurement::Quantity::level)),
             QString("61.5"));
}

void MeasureCycleTest::the_limits_that_were_checked_are_kept() {
    show_digital();
    tick({kDcpLevel, kChber, kPvBer, kCfo, kMer});
    panel().alarm_stated = {true, false, false, true};
    panel().lev_mind = "30";
    panel().lev_maxd = "80";
    panel().mer_mind = "13";
    panel().mer_maxd = "20";
    measure_and_store();
    const measurement::Measurement kept = page().store().measurement(0);
    const auto limits = [&kept](measurement::Quantity quantity) {
        return kept.limits[static_cast<std::size_t>(quantity)];
    };
    QVERIFY(limits(measurement::Quantity::level) == measurement::Limits({30, 80}));
    QVERIFY(limits(measurement::Quantity::mer) == measurement::Limits({13, 20}));
    QVERIFY(!limits(measurement::Quantity::ber) && !limits(measurement::Quantity::cn));
    QVERIFY(kept.verdict == measurement::Verdict::fail);  // 12.3 is below 13
    const auto shown = [&kept](measurement::Quantity quantity) {
        return measurement::reading_text(quantity, kept.reading(quantity));
    };
    QCOMPARE(shown(measurement::Quantity::ber), QString("2.0E-4"));
    QCOMPARE(shown(measurement::Quantity::pvber), QString("<1.0E-8"));
    QCOMPARE(kept.reading(measurement::Quantity::cfo).value, 1.25F);
    QCOMPARE(shown(measurement::Quantity::mer), QString("12.3"));
}

void MeasureCycleTest::complete_measures_are_kept() {
    f_->program.corrected.complete = true;
    panel().noise_freqa = "1050.0";
    f_->values["LEVCNA?"] = "CN 12.5";
    for (auto& ticked : panel().meas_statea) ticked = true;
    measure_and_store();
    const measurement::Measurement kept = page().store().measurement(0);
    QCOMPARE(measurement::reading_text(measurement::Quantity::cn,
                                       kept.reading(measurement::Quantity::cn)),
             QString("12.5"));
    QCOMPARE(measurement::reading_text(measurement::Quantity::noise,
                                       kept.reading(measurement::Quantity::noise)),
             QString("58.3"));
    QCOMPARE(*kept.frequency, 1000.0F);  // that of the level, not of the noise beside it
}

void MeasureCycleTest::a_unit_that_was_lost_on_its_way_is_not_known() {
    show_digital();
    tick({kDcpLevel});
    f_->rules.modes.cmdlev_Click(kDbm);
    QCOMPARE(f_->link.settings.unit().value_or(-1), int(kDbm));
    f_->refuse("UNIT 00");
    measure_and_store();
    QVERIFY(!f_->link.port_connected);
    QVERIFY(!f_->link.settings.unit());
}

void MeasureCycleTest::log_grows_by_one_line_a_measurement() {
    QStringList reasons;
    f_->rules.cycle.on_log_written = [&](const QString& reason) { reasons += reason; };
    f_->rules.log.open(f_->path("day.log"), page());
    panel().meas_statea[kLevel] = true;
    f_->values["LEVANL?"] = "L <20.5";
    measure_and_store();
    const QByteArray first = log_bytes();
    QCOMPARE(first, QByteArray("21/11/26\t10:00:01\t1000.0\t10600\t<20.5\t\t\t\t\t\t\r\n"));
    f_->clock.sleep(60);
    measure_and_store();
    QCOMPARE(log_bytes(), first + "21/11/26\t10:01:02\t1000.0\t10600\t<20.5\t\t\t\t\t\t\r\n");
    f_->rules.log.close();
    measure_and_store();
    QCOMPARE(log_bytes().count('\n'), 2);
    QCOMPARE(page().measurements(), 3);
    QCOMPARE(reasons, (QStringList{QString(), QString()}));
}

void MeasureCycleTest::log_that_cannot_be_written_loses_its_line() {
    QStringList reasons;
    f_->rules.cycle.on_log_written = [&](const QString& reason) { reasons += reason; };
    QVERIFY(QDir().mkdir(f_->path("logs")));
    f_->rules.log.open(f_->path("logs/day.log"), page());
    QVERIFY(QDir(f_->path("logs")).removeRecursively());
    panel().meas_statea[kLevel] = true;
    measure_and_store();
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||"));
    QCOMPARE(reasons.size(), 1);
    QVERIFY(!reasons[0].isEmpty());
    QVERIFY(f_->rules.log.log_open());
}

void MeasureCycleTest::link_lost_within_the_wait() {
    show_digital();
    tick({kDcpLevel, kChber, kMer});
    panel().leva = "before";
    // The cable is pulled in the five seconds of the QPSK start.
    f_->on_command = [this](const QByteArray& command) {
        if (command == "BERQPSK") f_->port.vanish_in(2);
    };
    measure_and_store();
    QVERIFY(!f_->link.port_connected);
    QCOMPARE(f_->commands().last(), QString("BERQPSK"));
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(panel().bercomune, kSix);
    QCOMPARE(page().measurements(), 0);
    // The next measurement only turns the lamps off.
    measure_and_store();
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(page().measurements(), 0);
}

void MeasureCycleTest::link_lost_at_any_moment() {
    // A whole cycle takes less than 7 s.
    for (double moment = 0; moment < 6.5; moment += 0.13) {
        init();
        show_digital();
        f_->program.corrected.complete = moment > 3;
        panel().noise_freqd = "1100";
        f_->values["LEVCND?"] = " 12.5";
        f_->raw["LEVDCP?1100.0"] = "LEVDCP?1100.0\rDCP28.3\rOK\r";
        tick({kDcpLevel, kChber, kPvBer, kCfo, kMer});
        if (f_->program.corrected.complete) tick({kCnDigital, kNoiseDigital});
        panel().alarm_stated.fill(true);
        f_->port.vanish_in(moment);
        f_->rules.measure_once();
        const QByteArray words = QByteArray::number(moment);
        QVERIFY2(!f_->link.port_connected, words);
        QVERIFY2(page().measurements() == 0, words);
        QVERIFY2(!f_->port.is_open(), words);
    }
}

void MeasureCycleTest::a_refused_command_loses_the_link() {
    f_->refuse("ATTEN 6");
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    measure_and_store();
    QCOMPARE(f_->commands(),
             (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "ATTEN 6", "ATTEN 6"}));
    QCOMPARE(panel().leva, QString());
    QCOMPARE(page().measurements(), 0);
}

void MeasureCycleTest::the_end_of_the_program_passes_through_data() {
    QTest::addColumn<QByteArray>("at");
    QTest::newRow("at once") << QByteArray("MEASURE");
    QTest::newRow("before the attenuator's wait") << QByteArray("ATTEN 6");
    QTest::newRow("before the QPSK wait") << QByteArray("BERQPSK");
    QTest::newRow("before the last command") << QByteArray("BERQPSK?");
}

void MeasureCycleTest::the_end_of_the_program_passes_through() {
    QFETCH(QByteArray, at);
    f_->rules.log.open(f_->path("day.log"), page());
    show_digital();
    tick({kDcpLevel, kChber, kMer});
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = ends || command == at; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, f_->rules.measure_once());
    // The transaction that had begun came to its end, nothing was sent behind it.
    QCOMPARE(f_->commands().last(), QString::fromLatin1(at));
    QCOMPARE(page().measurements(), 0);
    QCOMPARE(log_bytes(), QByteArray("no such file"));
    QVERIFY(f_->link.port_connected);
}

void MeasureCycleTest::measures_that_run_to_their_end() {
    QVERIFY(!measure_activestate(panel()));
    f_->rules.tick_measures(kAnalogMode);
    QCOMPARE(panel().meas_statea, (std::array{true, false, false}));
    QCOMPARE(panel().meas_stated, (std::array<bool, 8>{}));
    show_digital();
    panel().meas_statea.fill(false);
    f_->rules.tick_measures(kDigitalMode);
    QCOMPARE(panel().meas_statea, (std::array<bool, 3>{}));
    QCOMPARE(panel().meas_stated, (std::array{true, false, false, true, true, true, true, false}));
}

}  // namespace m47::realtime
