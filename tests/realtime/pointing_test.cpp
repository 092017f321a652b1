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
    panel().meas_statea = {true, true, true};
    panel().alarm_statea = {true, true};
    panel().lev_mina = "30";
    panel().lev_maxa = "60";
    panel().cn_mina = "99";
    Pointing pointing(f_->rules);
    QVERIFY(f_->commands().isEmpty());
    std::optional<measurement::Measurement> level = pointing.next();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 0, 0, 10}));
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
    QCOMPARE(f_->pauses().mid(4), (QList<int>{0, 0}));
}

void MeasureCycleTest::the_level_alone_leaves_the_screen_as_it_was() {
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
    show_digital();
    tick({kDcpLevel, kCnDigital, kMer});
    Pointing pointing(f_->rules);
    QCOMPARE(level_in(pointing.next()), QString("61.5"));
    QCOMPARE(f_->commands(), cycle);
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

void MeasureCycleTest::a_level_alone_that_is_in_doubt_begins_anew() {
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
    Pointing pointing(f_->rules);
    QVERIFY(pointing.next());
    f_->port.hush();
    f_->port.answer = nullptr;
    QVERIFY(!pointing.next());
    QVERIFY(!f_->link.port_connected);
    QVERIFY(!pointing.next());
}

}  // namespace m47::realtime
