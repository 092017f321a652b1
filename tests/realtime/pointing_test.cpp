// SPDX-License-Identifier: GPL-3.0-or-later
// The level alone, repeated for somebody who turns a dish.
#include "pointing.h"

#include "measure_cycle_test.h"

namespace m47::realtime {
namespace {

QString level_in(const std::optional<measurement::Measurement>& measured) {
    if (!measured) return QStringLiteral("none");
    return measurement::reading_text(measurement::Quantity::level,
                                     measured->reading(measurement::Quantity::level));
}

}  // namespace

void MeasureCycleTest::the_level_alone_is_tuned_once_and_asked_again() {
    f_->values["UNIT?"] = "00";
    panel().meas_statea = {true, true, true};
    panel().alarm_statea = {true, true};
    panel().lev_mina = "30";
    panel().lev_maxa = "60";
    panel().cn_mina = "99";
    Pointing pointing(f_->rules);
    QVERIFY(f_->commands().isEmpty());
    std::optional<measurement::Measurement> level = pointing.next();
    QCOMPARE(f_->commands(),
             (QStringList{"UNIT?", "MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 0, 0, 0, 10}));
    QCOMPARE(level_in(level), QString("58.3"));
    QVERIFY(level->verdict == measurement::Verdict::pass);
    QCOMPARE(*level->frequency, 1000.0F);
    f_->values["LEVANL?"] = "L 77.4";
    level = pointing.next();
    QCOMPARE(level_in(level), QString("77.4"));
    QVERIFY(level->verdict == measurement::Verdict::fail);
    f_->values["LEVANL?"] = "L 59.0";
    level = pointing.next();
    QVERIFY(level->verdict == measurement::Verdict::pass);
    QCOMPARE(f_->commands(), (QStringList{"LEVANL?", "LEVANL?"}));
    QCOMPARE(f_->pauses().mid(5), (QList<int>{0, 0}));
}

void MeasureCycleTest::the_level_alone_leaves_the_screen_as_it_was() {
    f_->values["UNIT?"] = "00";
    f_->rules.log.open(f_->path("day.log"), page());
    panel().meas_stated[kChber] = true;
    panel().alarm_statea[0] = true;
    panel().alarm_light = lamps({{4, LampColour::green}});
    panel().leva = "44.0";
    panel().fsat = "99999";
    panel().lev_mina = "5";
    panel().lev_maxa = "10";
    int shown = 0;
    panel().on_repaint = [&shown] { ++shown; };
    const RealtimePanel before = panel();
    Pointing pointing(f_->rules);
    for (int k = 0; k < 3; ++k) QVERIFY(pointing.next());
    QCOMPARE(shown, 0);
    QCOMPARE(panel().fsat, before.fsat);
    QCOMPARE(panel().leva, before.leva);
    QCOMPARE(panel().lev_mina, before.lev_mina);
    QCOMPARE(panel().lev_maxa, before.lev_maxa);
    QVERIFY(panel().alarm_light == before.alarm_light);
    QVERIFY(panel().meas_stated == before.meas_stated && panel().meas_statea == before.meas_statea);
    QVERIFY(panel().alarm_statea == before.alarm_statea);
    QVERIFY(!state().alarm_raised);
    QCOMPARE(page().measurements(), 0);
    QVERIFY(!QFile::exists(f_->path("day.log")));
}

void MeasureCycleTest::the_digital_level_alone_is_ranged_anew_once_it_has_moved() {
    const QStringList cycle{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "UNIT 00",
                            "ATTEN?",  "LEVANL?",     "UNIT 02", "LEVDCP?"};
    f_->program.unit_index = panel().cmdlev = kDbm;
    f_->values["UNIT?"] = "02";
    show_digital();
    tick({kDcpLevel, kCnDigital, kMer});
    Pointing pointing(f_->rules);
    QCOMPARE(level_in(pointing.next()), QString("61.5"));
    QCOMPARE(f_->commands(), QStringList("UNIT?") + cycle);
    f_->values["LEVDCP?"] = "P 66.5";
    QCOMPARE(level_in(pointing.next()), QString("66.5"));
    f_->values["LEVDCP?"] = "P 66.6";
    QCOMPARE(level_in(pointing.next()), QString("66.6"));
    QCOMPARE(f_->commands(), (QStringList{"LEVDCP?", "LEVDCP?"}));
    QCOMPARE(level_in(pointing.next()), QString("66.6"));
    QCOMPARE(f_->commands(), cycle);
    QVERIFY(pointing.next());
    QCOMPARE(f_->commands(), (QStringList{"LEVDCP?"}));
}

void MeasureCycleTest::a_level_alone_in_a_unit_chosen_at_the_meter_is_none() {
    f_->values["UNIT?"] = "00";
    f_->rules.link.send("UNIT?");
    // Chosen before the first one.
    f_->values["UNIT?"] = "01";
    Pointing pointing(f_->rules);
    QVERIFY(pointing.next()->unit == kDbmv);
    f_->commands();
    f_->values["UNIT?"] = "02";
    f_->values["LEVANL?"] = "L-50.5";
    QVERIFY(!pointing.next());
    QCOMPARE(f_->commands(), (QStringList{"LEVANL?", "UNIT?"}));
    const std::optional<measurement::Measurement> level = pointing.next();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(level_in(level), QString("-50.5"));
    QVERIFY(level->unit == kDbm);
    // A dish that comes upon a satellite moves a level too: that is asked once for its unit.
    f_->values["LEVANL?"] = "L-20.5";
    QVERIFY(pointing.next()->unit == kDbm);
    QCOMPARE(f_->commands(), (QStringList{"LEVANL?", "UNIT?"}));
    QVERIFY(pointing.next());
    QCOMPARE(f_->commands(), (QStringList{"LEVANL?"}));
}

void MeasureCycleTest::a_level_alone_that_is_in_doubt_begins_anew() {
    f_->values["UNIT?"] = "00";
    Pointing pointing(f_->rules);
    QVERIFY(pointing.next());
    static_cast<void>(f_->commands());
    f_->values["LEVANL?"] = "L 5x.3";
    QCOMPARE(level_in(pointing.next()), QString("none"));
    QCOMPARE(f_->commands(), (QStringList{"LEVANL?"}));
    QCOMPARE(level_in(pointing.next()), QString("none"));
    f_->values["LEVANL?"] = "L 58.3";
    QCOMPARE(level_in(pointing.next()), QString("58.3"));
    const QStringList cycle{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"};
    QCOMPARE(f_->commands(), cycle + cycle);
}

void MeasureCycleTest::the_level_alone_ends_with_the_link() {
    f_->values["UNIT?"] = "00";
    Pointing pointing(f_->rules);
    QVERIFY(pointing.next());
    f_->port.hush();
    f_->port.answer = nullptr;
    QVERIFY(!pointing.next());
    QVERIFY(!f_->link.port_connected);
    QVERIFY(!pointing.next());
}

void MeasureCycleTest::the_cn_alone_is_tuned_once_and_asked_again() {
    f_->values["LEVCNA?"] = "C/N 14.2";
    panel().alarm_statea = {true, true};
    panel().cn_mina = "12";
    panel().cn_maxa = "20";
    Pointing analog(f_->rules, measurement::Quantity::cn);
    std::optional<measurement::Measurement> cn = analog.next();
    QCOMPARE(f_->commands(),
             (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "MARKER 1 0", "LEVCNA?"}));
    QCOMPARE(cn->reading(measurement::Quantity::cn).value, 14.2F);
    QVERIFY(cn->verdict == measurement::Verdict::pass);
    f_->values["LEVCNA?"] = "C/N 11.0";
    QVERIFY(analog.next()->verdict == measurement::Verdict::fail);
    QCOMPARE(f_->commands(), QStringList{"LEVCNA?"});
    analog.leave();
    show_digital();
    f_->values["LEVCND?"] = "<3.0";
    Pointing digital(f_->rules, measurement::Quantity::cn);
    for (int k = 0; k < 2; ++k) {
        const measurement::Reading reading = digital.next()->reading(measurement::Quantity::cn);
        QCOMPARE(reading.value, 3.0F);
        QVERIFY(reading.mark == measurement::RangeMark::below);
    }
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6",
                                          "MARKER 1 1", "LEVCND?", "LEVCND?"}));
    digital.leave();
    QCOMPARE(f_->commands(), QStringList());
    QVERIFY2(!f_->program.corrected.complete, "the user's choice is as it was");
}

/// The meter stays in its QPSK mode, which takes 5 s to settle, until it is left.
void MeasureCycleTest::the_mer_alone_stays_in_its_mode() {
    f_->values["BERQPSK?"] = "CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 1.25\rMER   : 12.3";
    panel().srqpsk_txt = "27500";
    // The analog presentation is in front: it stays there.
    Pointing pointing(f_->rules, measurement::Quantity::mer);
    std::optional<measurement::Measurement> mer = pointing.next();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 00",
                                          "SYMBRATEQPSK 27500", "BERQPSK", "BERQPSK?"}));
    QCOMPARE(f_->pauses().last(), 50);
    QCOMPARE(mer->reading(measurement::Quantity::mer).value, 12.3F);
    QVERIFY(mer->mode == measurement::MeasureMode::digital);
    QCOMPARE(*mer->frequency, 1000.0F);
    QVERIFY(!panel().satdigmea_visible && !panel().meas_stated[kMer]);
    f_->values["BERQPSK?"] = "MER   : 13.0";
    QCOMPARE(pointing.next()->reading(measurement::Quantity::mer).value, 13.0F);
    QCOMPARE(f_->commands(), QStringList{"BERQPSK?"});
    // An answer without it, and the mode is entered anew.
    f_->values["BERQPSK?"] = "CHBER : 2.0E-4";
    QVERIFY(!pointing.next());
    f_->values["BERQPSK?"] = "MER   : 9.9";
    QVERIFY(pointing.next());
    QCOMPARE(f_->commands().filter("BERQPSK").size(), 3);
    pointing.leave();
    pointing.leave();
    QCOMPARE(f_->commands(), QStringList{"MEASURE"});
}

void MeasureCycleTest::the_mer_alone_is_left_also_when_it_is_stopped() {
    bool told = false;
    f_->link.interrupted = [&] { return told; };
    f_->port.answer = [&, answer = f_->port.answer](const QByteArray& command) {
        told = told || command == "BERQPSK";
        return answer(command);
    };
    Pointing pointing(f_->rules, measurement::Quantity::mer);
    QVERIFY_EXCEPTION_THROWN(static_cast<void>(pointing.next()), Interrupted);
    static_cast<void>(f_->commands());
    pointing.leave();
    QCOMPARE(f_->commands(), QStringList{"MEASURE"});
}

}  // namespace m47::realtime
