// SPDX-License-Identifier: GPL-3.0-or-later
// Passes over a plan, timed and on demand.
#include "acquisition_test.h"

namespace m47::acquisition {

void AcquisitionTest::pass_over_a_plan() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    programs().move_last();
    QList<LampColour> lamps;
    QList<bool> active;
    f_->on_command = [&](const QByteArray&) {
        lamps += panel().time_state;
        active += state().plan_run_active && !ticks_->timer2.running();
    };
    acquisition().multiple_acq();
    QCOMPARE(place(), 0);
    QVERIFY(state().plan_run_active);
    QVERIFY(ticks_->timer2.running());
    run_for(0.9);
    QCOMPARE(f_->port.opens, 0);
    run_for(20);
    QCOMPARE(f_->commands(), cycle_at("1000.0") + cycle_at("1010.0") + cycle_at("1020.0"));
    // One second from the end of a step to the next.
    QCOMPARE(f_->pauses(), (QList<int>{10, 0, 0, 10, 10, 0, 0, 10, 10, 0, 0, 10}));
    QVERIFY(lamps == QList<LampColour>(12, LampColour::red));
    QCOMPARE(active, QList<bool>(12, true));
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 2}));
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 3}, {2, 3}, {3, 3}, {0, 0}}));
    QVERIFY(!state().plan_run_active);
    QVERIFY(!f_->link.commands_suspended);
    QVERIFY(!ticks_->timer2.running());
    QCOMPARE(place(), 0);
}

void AcquisitionTest::a_pass_is_stopped_with_its_measurement() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    acquisition().multiple_acq();
    f_->link.activity.set_run(acquisition().run());
    QString shown;
    f_->on_command = [&](const QByteArray& command) {
        if (command != "FREQ 1010.0") return;
        shown = activity_text(f_->link.activity, Texts());
        f_->link.activity.stop();
    };
    QVERIFY_THROWS_EXCEPTION(Interrupted, run_for(20));
    QCOMPARE(f_->commands(), cycle_at("1000.0") + QStringList({"MEASURE", "FREQ 1010.0"}));
    QCOMPARE(shown, QString("Tuning the meter… (Measuring the plan)"));
    QVERIFY(!acquisition().passing());
    QVERIFY(!state().plan_run_active);
    QVERIFY(!ticks_->timer2.running());
    QVERIFY(!acquisition().run());
    QCOMPARE(progress_.last(), (QPair<int, int>{0, 0}));
    // Nothing locks the next one out.
    f_->on_command = nullptr;
    acquisition().multiple_acq();
    run_for(20);
    QCOMPARE(frequencies().mid(1), plan_frequencies({0, 1, 2}));
    f_->link.activity.set_run(std::nullopt);
}

void AcquisitionTest::a_timed_run_is_stopped_in_its_pause() {
    acquisition().start();
    acquisition().cmdstart_Click();
    QVERIFY(acquisition().timed());
    f_->link.activity.set_run(acquisition().run());
    QVERIFY(activity_text(f_->link.activity, Texts()).startsWith("Next measurement in "));
    QStringList told;
    f_->link.activity.on_stopped = [&](const Said& how_far) { told += how_far.in(Texts()); };
    f_->link.activity.stop();
    QVERIFY(!acquisition().timed());
    QCOMPARE(told, QStringList{"a run was between two measurements, rows on the page: 0"});
}

void AcquisitionTest::each_pass_tells_its_own_listener() {
    add_plan("A", {1, 1});
    acquisition().group();
    QList<QPair<int, int>> other;
    PlanPass by_hand(f_->rules, {.progress = [&](int place, int monitored) {
                         other += {place, monitored};
                     }});
    for (by_hand.begin(); by_hand.running();) by_hand.step();
    QCOMPARE(other, (QList<QPair<int, int>>{{1, 2}, {2, 2}, {0, 0}}));
    QVERIFY(progress_.isEmpty());
    QVERIFY(!acquisition().passing());
    acquisition().multiple_acq();
    run_for(20);
    QCOMPARE(progress_, other);
    QCOMPARE(other.size(), 3);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 0, 1}));
}

void AcquisitionTest::pass_rule_data() {
    QTest::addColumn<QList<int>>("states");
    QTest::addColumn<QString>("steps");
    // Per step the program it measures, "-" for none; "." where the pass ends.
    QTest::newRow("1") << QList<int>{1} << "0.";
    QTest::newRow("101") << QList<int>{1, 0, 1} << "02.";
    QTest::newRow("1001") << QList<int>{1, 0, 0, 1} << "0-3.";
    QTest::newRow("10001") << QList<int>{1, 0, 0, 0, 1} << "0-4.";
    QTest::newRow("100001") << QList<int>{1, 0, 0, 0, 0, 1} << "0--5.";
    QTest::newRow("011") << QList<int>{0, 1, 1} << "12.";
    QTest::newRow("0011") << QList<int>{0, 0, 1, 1} << "-23.";
    QTest::newRow("110") << QList<int>{1, 1, 0} << "01.";
    QTest::newRow("1100") << QList<int>{1, 1, 0, 0} << "01-.";
    QTest::newRow("0") << QList<int>{0} << ".";
    QTest::newRow("00") << QList<int>{0, 0} << "-.";
    QTest::newRow("000") << QList<int>{0, 0, 0} << "-.";
    QTest::newRow("0000") << QList<int>{0, 0, 0, 0} << "--.";
}

void AcquisitionTest::pass_rule() {
    QFETCH(QList<int>, states);
    QFETCH(QString, steps);
    add_plan("A", states);
    acquisition().group();
    acquisition().multiple_acq();
    QString seen;
    for (bool goes_on = true; goes_on && seen.size() < 20;) {
        const int rows = page().measurements();
        acquisition().Timer2_Timer();
        goes_on = ticks_->timer2.running();
        QVERIFY(!f_->link.commands_suspended);
        QCOMPARE(state().plan_run_active, goes_on);
        const bool measured = page().measurements() > rows;
        seen += measured ? panel().prog_num.right(1) : QString(goes_on ? "-" : ".");
    }
    QCOMPARE(seen, steps);
    QCOMPARE(place(), 0);
    QCOMPARE(frequencies(), plan_frequencies(measured_places(states)));
    QCOMPARE(progress_.last(), qMakePair(0, 0));
}

void AcquisitionTest::pass_without_a_monitored_program() {
    add_plan("A", {0, 0, 0, 0, 0, 0});
    acquisition().group();
    panel().prog_num = "before";
    acquisition().multiple_acq();
    run_for(3.5);
    QVERIFY(state().plan_run_active);
    run_for(1);
    QVERIFY(!state().plan_run_active);
    QVERIFY(!ticks_->timer2.running());
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(page().measurements(), 0);
    QCOMPARE(panel().prog_num, QString("before"));
    QCOMPARE(place(), 0);
    QCOMPARE(progress_, (QList<QPair<int, int>>{{0, 0}}));
}

void AcquisitionTest::pass_steps_of_unmonitored_programs() {
    add_plan("A", {1, 0, 0, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(20);
    QCOMPARE(f_->commands(), cycle_at("1000.0") + cycle_at("1030.0"));
    // The second unmonitored program in a row takes a step of a second.
    QCOMPARE(f_->pauses(), (QList<int>{10, 0, 0, 10, 20, 0, 0, 10}));
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 2}, {2, 2}, {0, 0}}));
}

void AcquisitionTest::pass_sends_only_the_cycles() {
    add_plan("A", {});
    for (int number = 0; number < 6; ++number) {
        const bool direct = number % 2 == 0;
        add_program("A", number,
                    {{"loc_osc", direct}, {"frequenza", direct ? 1000 : 11000}, {"K22", 1}});
    }
    acquisition().group();
    QList<bool> suspended;
    panel().on_repaint = [&, last = QString("000")]() mutable {
        if (panel().prog_num == last) return;
        last = panel().prog_num;
        suspended += f_->link.commands_suspended;
    };
    bool on_the_wire = false;
    f_->on_command = [&](const QByteArray&) { on_the_wire |= f_->link.commands_suspended; };
    acquisition().multiple_acq();
    run_for(30);
    QStringList expected;
    for (int number = 0; number < 6; ++number)
        expected += cycle_at(number % 2 == 0 ? "1000.0" : "11000");
    QCOMPARE(f_->commands(), expected);
    QCOMPARE(suspended, QList<bool>(5, true));
    QVERIFY(!on_the_wire);
    QVERIFY(!f_->link.commands_suspended);
}

void AcquisitionTest::timed_plan() {
    add_plan("A", {1, 0, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(10);
    QVERIFY(state().plan_run_active);
    QVERIFY(ticks_->timer2.running());
    QVERIFY(panel().time_state == LampColour::green);
    QCOMPARE(state().ticks_left, 10);
    QVERIFY(firings_.isEmpty());
    run_for(1.5);
    QVERIFY(panel().time_state == LampColour::red);
    // The countdown waits until the pass has ended.
    while (state().plan_run_active) {
        QCOMPARE(state().ticks_left, 10);
        run_for(0.1);
    }
    const double ended = now();
    QCOMPARE(frequencies(), plan_frequencies({0, 2}));
    firings_.clear();
    run_for(20);
    QCOMPARE(frequencies().mid(0, 3), plan_frequencies({0, 2, 0}));
    // Ten ticks of the countdown and one of the pass; the first tick comes within a second.
    QVERIFY(firings_[0] - ended > 9.9 && firings_[0] - ended < 11.1);
}

void AcquisitionTest::cmdstart_lets_a_pass_end() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    acquisition().cmdstart_Click();
    run_for(4.5);
    QVERIFY(state().plan_run_active);
    acquisition().cmdstart_Click();
    QVERIFY(ticks_->timer2.running());
    QVERIFY(state().plan_run_active);
    page().clear();
    run_for(60);
    // The button has put the set on the first program, from where the pass goes to its end.
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 2}));
    QVERIFY(!state().plan_run_active);
}

}  // namespace m47::acquisition
