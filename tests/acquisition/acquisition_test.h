// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "acquisition.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include "realtime_fixture.h"
#include "time_delays.h"

namespace m47::acquisition {

constexpr double kInstant = 1e-6;  // seconds; below every step of the clock

/// A one-second tick on the virtual clock. One that cannot be delivered when it is due comes late,
/// and those that pass meanwhile come as this one.
class FakeTicker : public Ticker {
  public:
    explicit FakeTicker(const VirtualClock& clock) : clock_(clock) {}

    void start() override {
        running_ = true;
        due_ = clock_.elapsed() + 1;
    }
    void stop() override { running_ = false; }
    bool running() const override { return running_; }

    double due() const { return due_; }
    void take() {
        due_ += 1;
        if (due_ < clock_.elapsed() - kInstant) due_ = clock_.elapsed() + 1;
    }

  private:
    const VirtualClock& clock_;
    double due_ = 0;
    bool running_ = false;
};

/// Another program at work on the same database file.
class OtherConnection {
  public:
    explicit OtherConnection(const QString& path) {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(path);
        if (!other.open()) qFatal("not opened: %s", qPrintable(path));
    }
    ~OtherConnection() { QSqlDatabase::removeDatabase("other"); }
    OtherConnection(const OtherConnection&) = delete;
    OtherConnection& operator=(const OtherConnection&) = delete;

    void run(const QString& statement) const {
        QSqlQuery query(QSqlDatabase::database("other"));
        if (!query.exec(statement)) qFatal("refused: %s", qPrintable(statement));
    }
};

/// What the meter was asked for one value.
struct AskedLevel {
    QByteArray frequency;
    QByteArray level;
};

/// The commands of one analog level measurement at `frequency`.
inline QStringList cycle_at(const QString& frequency) {
    return {"MEASURE", "FREQ " + frequency, "ATTEN 6", "LEVANL?"};
}

/// The places (from 0) that a pass measures: a step passes over one unmonitored program at most, a
/// second one in a row takes a step of its own.
inline QList<int> measured_places(const QList<int>& monitor_states) {
    QList<int> places;
    int skipped = 0;
    for (int place = 0; place < monitor_states.size(); ++place) {
        if (monitor_states[place] == 1) places += place;
        skipped = monitor_states[place] == 1 ? 0 : skipped + 1;
    }
    return places;
}

/// When measurements are taken: on demand, over a plan, again and again.
class AcquisitionTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void single_element();
    void plan_mode();
    void plan_mode_opens_the_first_plan();
    void plan_mode_without_a_plan();
    void one_measurement_now();
    void timer_panel();
    void stop_data();
    void stop();
    void stop_ends_a_pass();
    void stop_in_single_mode_leaves_the_pass();
    void start_and_stop_button();
    void start_button_of_a_plan();
    void first_firing_after_one_second();
    void single_interval_adds_the_measuring_time_data();
    void single_interval_adds_the_measuring_time();
    void delay_list_data();
    void delay_list();
    void no_delay_chosen();
    void countdown_is_not_reloaded();
    void countdown_text();
    void countdown_pauses_while_a_plan_runs();
    void one_measurement_locks_timed_firings_out();
    void single_acquisition_in_a_countdown();
    void clock_text();

    void pass_over_a_plan();
    void each_pass_tells_its_own_listener();
    void pass_rule_data();
    void pass_rule();
    void pass_without_a_monitored_program();
    void pass_steps_of_unmonitored_programs();
    void pass_sends_only_the_cycles();
    void timed_plan();
    void cmdstart_lets_a_pass_end();
    void plans_walk();
    void plan_recall_is_suspended();
    void programs_walk_data();
    void programs_walk();
    void program_walk_sends_nothing();
    void no_plan_open();
    void progress_is_that_of_the_program();
    void progress_is_that_of_the_plan_that_the_pass_is_in();
    void progress_counts_the_programs_as_they_are();
    void a_level_that_the_mode_loses_is_told_once();
    void a_bandwidth_that_is_not_that_of_the_program_is_told();
    void a_program_without_a_bandwidth_has_no_other_one();
    void an_antenna_that_is_not_switched_is_told();
    void plan_deleted_in_a_pass_data();
    void plan_deleted_in_a_pass();
    void plan_deleted_between_two_firings();
    void plan_deleted_before_a_pass();
    void database_held_at_a_firing();
    void a_plan_replaced_between_two_firings();
    void a_plan_replaced_in_a_pass();
    void a_firing_without_a_plan();
    void what_is_timed_stops_without_its_plan();
    void another_plan_that_cannot_be_read();
    void link_down();
    void link_lost_in_a_pass();
    void end_of_the_program_in_a_measurement();
    void end_of_the_program_in_a_pass();
    void a_pass_is_stopped_with_its_measurement();
    void a_timed_run_is_stopped_in_its_pause();
    void what_goes_on_by_itself_tells_how_far_it_is();
    void a_week_of_a_plan();

  private:
    realtime::RealtimePanel& panel() { return f_->panel(); }
    realtime::RealtimeState& state() { return f_->state(); }
    Acquisition& acquisition() { return *acquisition_; }
    measurement::PageModel& page() { return f_->rules.page; }
    db::Recordset& programs() { return *f_->rules.modes.rs_programs; }
    double now() { return f_->clock.elapsed(); }

    void make_acquisition(PassNews news);
    void empty_database();
    void add_plan(const QString& name, const QList<int>& monitor_states, double frequency = 1000);
    void add_program(const QString& plan, int number, const QMap<QString, QVariant>& fields);
    void remove_programs(const QString& plan);
    void replace_programs(const QString& plan);
    void start_timed_plan();
    void run_for(double seconds) { run_until(now() + seconds); }
    void run_until(double time);
    /// The place of the plan's current program, from 0; -1 at the end.
    int place();
    QStringList frequencies();
    static QStringList plan_frequencies(const QList<int>& places);
    /// Everything on the screen that tells of the kind of acquisition.
    QString kind_flags();

    struct VirtualTicks {
        explicit VirtualTicks(const VirtualClock& clock)
            : timer1(clock), timer2(clock), timer3(clock) {}
        FakeTicker timer1, timer2, timer3;
    };

    // The tickers go before the fixture that holds their clock.
    std::unique_ptr<realtime::RealtimeFixture> f_;
    std::unique_ptr<VirtualTicks> ticks_;
    std::unique_ptr<Acquisition> acquisition_;
    QList<QPair<int, int>> progress_;
    QList<double> firings_;  ///< when a measurement began
    QStringList told_;       ///< why a pass was cut short
};

}  // namespace m47::acquisition
