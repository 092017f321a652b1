// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition_test.h"

namespace m47::acquisition {

int AcquisitionTest::place() {
    if (programs().end_of_set()) return -1;
    return programs().text("pg_num").toInt();
}

QStringList AcquisitionTest::frequencies() {
    QStringList all;
    for (int row = 0; row < page().measurements(); ++row) all += page().cells(row)[2];
    return all;
}

QStringList AcquisitionTest::plan_frequencies(const QList<int>& places) {
    QStringList all;
    for (const int place : places) all += QString::number(1000 + 10 * place) + ".0";
    return all;
}

QString AcquisitionTest::kind_flags() {
    return QStringLiteral("plan %1, keys %2, single %3, sat %4, limits %5, kind %6")
        .arg(panel().plan_controls_visible)
        .arg(panel().plan_keys_visible)
        .arg(panel().single_acq_visible)
        .arg(panel().sat_opt_enabled)
        .arg(panel().limits_enabled)
        .arg(state().acq_kind);
}

void AcquisitionTest::init() {
    f_ = std::make_unique<realtime::RealtimeFixture>();
    f_->values["LEVANL?"] = "L 58.3";
    ticks_ = std::make_unique<VirtualTicks>(f_->clock);
    progress_.clear();
    firings_.clear();
    told_.clear();
    make_acquisition({.progress =
                          [this](int place, int monitored) {
                              progress_ += {place, monitored};
                          },
                      .cut_short = [this](const QString& reason) { told_ += reason; }});
    // The screen has been opened; what that sends is no matter here.
    f_->link.port_connected = false;
    f_->rules.modes.Form_Load();
    f_->link.port_connected = true;
    panel().meas_statea[realtime::kLevel] = true;
    f_->on_command = [this](const QByteArray& command) {
        if (command == "MEASURE") firings_ += now();
    };
    empty_database();
}

void AcquisitionTest::make_acquisition(PassNews news) {
    const Ticks ticks{ticks_->timer1, ticks_->timer2, ticks_->timer3};
    acquisition_ = std::make_unique<Acquisition>(f_->rules, ticks, std::move(news));
}

void AcquisitionTest::empty_database() {
    for (db::Recordset* set :
         {&f_->database().programmi(), &f_->database().configurazione(), &f_->database().gruppo()})
        for (set->requery(); !set->empty(); set->requery()) set->remove();
}

void AcquisitionTest::add_program(const QString& plan, int number,
                                  const QMap<QString, QVariant>& fields) {
    QMap<QString, QVariant> row{{"nome", plan},
                                {"pg_num", QString::number(number).rightJustified(3, u'0')},
                                {"frequenza", 1000 + 10 * number},
                                {"loc_osc", true},
                                {"loc_osc0", 0},
                                {"sat_ad", 0},
                                {"qpsk_symbolrate", "22000"},
                                {"lnb_volt", 1},
                                {"K22", 0},
                                {"monitor_state", 1}};
    row.insert(fields);
    realtime::RealtimeFixture::add_row(f_->database().programmi(), row);
}

void AcquisitionTest::add_plan(const QString& name, const QList<int>& monitor_states,
                               double frequency) {
    realtime::RealtimeFixture::add_row(f_->database().gruppo(), {{"nome", name}});
    realtime::RealtimeFixture::add_row(f_->database().configurazione(),
                                       {{"nome", name}, {"loc_osc1", 9750}, {"loc_osc2", 10600}});
    int number = 0;
    for (const int monitored : monitor_states) {
        add_program(name, number,
                    {{"monitor_state", monitored}, {"frequenza", frequency + 10 * number}});
        ++number;
    }
}

void AcquisitionTest::remove_programs(const QString& plan) {
    db::Recordset set = f_->database().of_plan("programmi", plan);
    for (; !set.empty(); set.requery()) set.remove();
}

void AcquisitionTest::run_until(double time) {
    const auto tick = [this](int number) {
        if (number == 0) acquisition().Timer1_Timer();
        if (number == 1) acquisition().Timer2_Timer();
        if (number == 2) acquisition().Timer3_Timer();
    };
    const std::array<FakeTicker*, 3> all{&ticks_->timer1, &ticks_->timer2, &ticks_->timer3};
    for (;;) {
        int next = -1;
        for (int i = 0; i < 3; ++i) {
            const FakeTicker& ticker = *all[static_cast<std::size_t>(i)];
            if (!ticker.running() || ticker.due() > time + kInstant) continue;
            if (next < 0 || ticker.due() < all[static_cast<std::size_t>(next)]->due() - kInstant)
                next = i;
        }
        if (next < 0) break;
        FakeTicker& ticker = *all[static_cast<std::size_t>(next)];
        f_->clock.sleep(ticker.due() - now());
        ticker.take();
        tick(next);
    }
    f_->clock.sleep(time - now());
}

void AcquisitionTest::single_element() {
    add_plan("A", {1});
    acquisition().group();
    acquisition().single();
    QCOMPARE(kind_flags(), QString("plan 0, keys 0, single 1, sat 1, limits 1, kind 1"));
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::plan_mode() {
    add_plan("A", {1});
    acquisition().single();
    acquisition().group();
    QCOMPARE(kind_flags(), QString("plan 1, keys 1, single 0, sat 0, limits 0, kind 2"));
    QVERIFY(!state().plan_run_active);
    QVERIFY(!ticks_->timer1.running());
    QVERIFY(!ticks_->timer2.running());
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::plan_mode_opens_the_first_plan() {
    add_plan("B", {1, 1});
    add_plan("A", {1}, 1500);
    f_->database().gruppo().move_last();
    acquisition().group();
    QCOMPARE(panel().grp_name, QString("B"));
    QCOMPARE(panel().prog_num, QString("000"));
    QCOMPARE(panel().fsat, QString("1000"));
    QCOMPARE(programs().count(), 2);
    QCOMPARE(place(), 0);
}

void AcquisitionTest::plan_mode_without_a_plan() {
    acquisition().group();
    // The handler ends where the plans cannot move: what comes behind it is not done.
    QCOMPARE(kind_flags(), QString("plan 1, keys 1, single 0, sat 0, limits 0, kind 1"));
    QCOMPARE(panel().grp_name, QString());
}

void AcquisitionTest::one_measurement_now() {
    bool active = false;
    f_->on_command = [&](const QByteArray&) { active = state().plan_run_active; };
    acquisition().single_acq();
    QVERIFY(active);
    QVERIFY(!state().plan_run_active);
    QCOMPARE(f_->commands(), cycle_at("1000.0"));
    QCOMPARE(frequencies(), QStringList{"1000.0"});
    QVERIFY(progress_.isEmpty());
}

void AcquisitionTest::timer_panel() {
    QVERIFY(!panel().timer_opt_visible);
    acquisition().start();
    QVERIFY(panel().timer_opt_visible);
    QVERIFY(ticks_->timer3.running());
    QVERIFY(!ticks_->timer1.running());
    QCOMPARE(panel().cmdstart, QString("&Start"));
}

void AcquisitionTest::stop_data() {
    QTest::addColumn<bool>("plan");
    QTest::newRow("single") << false;
    QTest::newRow("plan") << true;
}

void AcquisitionTest::stop() {
    QFETCH(bool, plan);
    add_plan("A", {1, 1, 1});
    acquisition().group();
    if (!plan) acquisition().single();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().start();
    acquisition().cmdstart_Click();
    run_for(10.5);
    QVERIFY(panel().time_state != LampColour::grey);
    acquisition().stop();
    QVERIFY(!state().plan_run_active);
    QVERIFY(!ticks_->timer1.running());
    QVERIFY(!ticks_->timer2.running());
    QVERIFY(ticks_->timer3.running());
    QVERIFY(panel().time_state == LampColour::grey);
    QVERIFY(!panel().timer_opt_visible);
    QCOMPARE(panel().time_left, QString());
    QCOMPARE(place(), plan ? 2 : 0);
    // The caption is only right again once the panel is shown anew.
    QCOMPARE(panel().cmdstart, QString("&Stop"));
    acquisition().start();
    QCOMPARE(panel().cmdstart, QString("&Start"));
}

void AcquisitionTest::stop_ends_a_pass() {
    add_plan("A", {1, 1, 1, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(1.5);
    QCOMPARE(frequencies(), plan_frequencies({0}));
    acquisition().stop();
    QCOMPARE(place(), 3);
    QCOMPARE(progress_.last(), qMakePair(0, 0));
    run_for(20);
    QCOMPARE(frequencies(), plan_frequencies({0}));
}

void AcquisitionTest::stop_in_single_mode_leaves_the_pass() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(1.5);
    acquisition().single();
    const int before = place();
    acquisition().stop();
    QCOMPARE(place(), before);
    QVERIFY(!state().plan_run_active);
    QVERIFY(ticks_->timer2.running());
    run_for(20);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 2}));
}

void AcquisitionTest::start_and_stop_button() {
    panel().time_state = LampColour::green;
    panel().time_delay = 4;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    QVERIFY(ticks_->timer1.running());
    QVERIFY(panel().time_state == LampColour::grey);
    QCOMPARE(panel().cmdstart, QString("&Stop"));
    panel().time_state = LampColour::green;
    acquisition().cmdstart_Click();
    QVERIFY(!ticks_->timer1.running());
    QVERIFY(panel().time_state == LampColour::grey);
    QCOMPARE(panel().cmdstart, QString("&Start"));
    run_for(100);
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::start_button_of_a_plan() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    for (const bool on : {true, false}) {
        programs().move_last();
        acquisition().cmdstart_Click();
        QCOMPARE(place(), 0);
        QCOMPARE(ticks_->timer1.running(), on);
    }
    // In single mode the plan stays where it is.
    acquisition().single();
    programs().move_last();
    acquisition().cmdstart_Click();
    acquisition().cmdstart_Click();
    QCOMPARE(place(), 2);
}

void AcquisitionTest::first_firing_after_one_second() {
    QCOMPARE(panel().time_delay, 0);
    QCOMPARE(state().ticks_left, 1);
    QList<LampColour> lamps;
    f_->on_command = [&](const QByteArray&) { lamps += panel().time_state; };
    acquisition().cmdstart_Click();
    run_for(0.99);
    QCOMPARE(f_->port.opens, 0);
    run_for(0.1);
    QCOMPARE(f_->commands(), cycle_at("1000.0"));
    QCOMPARE(static_cast<int>(f_->port.pauses.first() * 1000 + 0.5), 1000);
    QVERIFY(lamps == QList<LampColour>(4, LampColour::red));
    QVERIFY(panel().time_state == LampColour::green);
    QCOMPARE(state().ticks_left, 1);
    QVERIFY(!state().plan_run_active);
}

void AcquisitionTest::single_interval_adds_the_measuring_time_data() {
    QTest::addColumn<int>("delay");
    QTest::newRow("5 sec") << 0;
    QTest::newRow("10 sec") << 1;
    QTest::newRow("1 Min") << 4;
}

void AcquisitionTest::single_interval_adds_the_measuring_time() {
    QFETCH(int, delay);
    const int seconds = realtime::kTimeDelays[static_cast<std::size_t>(delay)].seconds;
    QList<double> ends;
    f_->rules.cycle.on_row = [&](const QStringList&) { ends += now(); };
    panel().time_delay = delay;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(6 * seconds + 12);
    QVERIFY(ends.size() >= 5);
    QVERIFY(ends[0] - firings_[0] > 1);
    for (int i = 1; i < ends.size(); ++i) {
        // The first command of a firing is on the line within some clock ticks.
        const double rest = firings_[i] - ends[i - 1];
        QVERIFY2(rest > seconds - kInstant && rest < seconds + 0.05,
                 qPrintable(QString("%1 s from the end of firing %2 to the next, %3 expected")
                                .arg(rest)
                                .arg(i)
                                .arg(seconds)));
    }
}

void AcquisitionTest::delay_list_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("seconds");
    const QList<int> seconds{1,   10,   20,   40,   60,   120,  240, 480,
                             600, 1200, 1800, 2400, 3000, 3600, 7200};
    for (int i = 0; i < seconds.size(); ++i)
        QTest::newRow(realtime::kTimeDelays[static_cast<std::size_t>(i)].entry) << i << seconds[i];
}

void AcquisitionTest::delay_list() {
    QFETCH(int, index);
    QFETCH(int, seconds);
    panel().time_delay = index;
    acquisition().time_delay_Click();
    QCOMPARE(state().ticks_left, seconds);
    acquisition().cmdstart_Click();
    run_for(seconds - 0.5);
    QCOMPARE(state().ticks_left, 1);
    QVERIFY(firings_.isEmpty());
    // One firing, and the entry is loaded again.
    run_for(1);
    QCOMPARE(firings_.size(), 1);
    QVERIFY(std::abs(firings_[0] - seconds) < 0.05);
    QCOMPARE(state().ticks_left, seconds);
    QCOMPARE(page().measurements(), 1);
}

void AcquisitionTest::no_delay_chosen() {
    state().ticks_left = 3;
    for (const int index : {-1, 15}) {
        panel().time_delay = index;
        acquisition().time_delay_Click();
        QCOMPARE(state().ticks_left, 3);
    }
    acquisition().cmdstart_Click();
    run_for(100);
    // Nothing is loaded behind the firing, so there is no second one.
    QCOMPARE(firings_.size(), 1);
    QVERIFY(state().ticks_left < 0);
    QVERIFY(panel().time_state == LampColour::green);
    QCOMPARE(panel().time_left, QString("0:00:00"));
}

void AcquisitionTest::countdown_is_not_reloaded() {
    panel().time_delay = 4;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(20);
    acquisition().cmdstart_Click();
    QCOMPARE(state().ticks_left, 40);
    run_for(500);
    QCOMPARE(state().ticks_left, 40);
    acquisition().cmdstart_Click();
    run_for(39.5);
    QVERIFY(firings_.isEmpty());
    run_for(1);
    QCOMPARE(firings_.size(), 1);
    QVERIFY(std::abs(firings_[0] - 560) < 0.05);
}

void AcquisitionTest::countdown_text() {
    panel().time_delay = 14;
    acquisition().time_delay_Click();
    QCOMPARE(panel().time_left, QString());
    acquisition().cmdstart_Click();
    QCOMPARE(panel().time_left, QString("2:00:00"));
    run_for(1);
    QCOMPARE(panel().time_left, QString("1:59:59"));
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    QCOMPARE(panel().time_left, QString("0:00:10"));
    QString at_the_firing;
    f_->on_command = [&](const QByteArray&) { at_the_firing = panel().time_left; };
    run_for(10);
    QCOMPARE(at_the_firing, QString("0:00:00"));
    QCOMPARE(panel().time_left, QString("0:00:10"));
    acquisition().cmdstart_Click();
    QCOMPARE(panel().time_left, QString());
    QCOMPARE(realtime::time_left_text(-5), QString("0:00:00"));
    QCOMPARE(realtime::time_left_text(59), QString("0:00:59"));
    QCOMPARE(realtime::time_left_text(3600), QString("1:00:00"));
}

void AcquisitionTest::countdown_pauses_while_a_plan_runs() {
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(3.5);
    state().plan_run_active = true;
    run_for(1000);
    QCOMPARE(state().ticks_left, 7);
    QCOMPARE(panel().time_left, QString("0:00:07"));
    QVERIFY(firings_.isEmpty());
    state().plan_run_active = false;
    run_for(6);
    QCOMPARE(state().ticks_left, 1);
    run_for(1);
    QCOMPARE(firings_.size(), 1);
}

/// Meanwhile a timed firing is locked out, and no longer, however the measurement ends.
void AcquisitionTest::one_measurement_locks_timed_firings_out() {
    f_->rules.panel.meas_statea[realtime::kLevel] = true;
    bool active = false;
    f_->on_command = [&](const QByteArray&) { active = f_->state().plan_run_active; };
    acquisition().single_acq();
    QVERIFY(active);
    QVERIFY(!f_->state().plan_run_active);
    QCOMPARE(f_->commands(), cycle_at(QStringLiteral("1000.0")));
    f_->link.interrupted = [] { return true; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, acquisition().single_acq());
    QVERIFY(!f_->state().plan_run_active);
}

void AcquisitionTest::single_acquisition_in_a_countdown() {
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(4.5);
    QCOMPARE(state().ticks_left, 6);
    f_->port.answer_delay = 1.5;
    acquisition().single_acq();
    const double length = now() - 4.5;
    QVERIFY(length > 7);
    QCOMPARE(page().measurements(), 1);
    QCOMPARE(state().ticks_left, 6);
    QVERIFY(!state().plan_run_active);
    QVERIFY(ticks_->timer1.running());
    run_for(20);
    QVERIFY(firings_.size() >= 2);
    // The one tick that came late counts.
    QVERIFY(firings_[1] > 10 + length - 1 && firings_[1] < 10 + length + 0.1);
}

void AcquisitionTest::clock_text() {
    f_->clock.set_date(QDate(2026, 3, 7));
    run_for(14 * 3600 - 2);
    QCOMPARE(panel().time_act, QString());
    acquisition().start();
    run_for(1);
    QCOMPARE(panel().time_act, QString("07/03 23:59:59"));
    run_for(1);
    QCOMPARE(panel().time_act, QString("08/03 00:00:00"));
    acquisition().stop();
    run_for(61);
    QCOMPARE(panel().time_act, QString("08/03 00:01:01"));
}

}  // namespace m47::acquisition

QTEST_GUILESS_MAIN(m47::acquisition::AcquisitionTest)
