// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include "realtime_fixture.h"
#include "time_delays.h"

namespace m47 {
namespace {

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
QStringList cycle_at(const QString& frequency) {
    return {"MEASURE", "FREQ " + frequency, "ATTEN 6", "LEVANL?"};
}

/// The places (from 0) that a pass measures: a step passes over one unmonitored program at most, a
/// second one in a row takes a step of its own.
QList<int> measured_places(const QList<int>& monitor_states) {
    QList<int> places;
    int skipped = 0;
    for (int place = 0; place < monitor_states.size(); ++place) {
        if (monitor_states[place] == 1) places += place;
        skipped = monitor_states[place] == 1 ? 0 : skipped + 1;
    }
    return places;
}

}  // namespace

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
    void what_goes_on_by_itself_tells_how_far_it_is();
    void a_week_of_a_plan();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    RealtimeState& state() { return f_->state(); }
    Acquisition& acquisition() { return *acquisition_; }
    PageModel& page() { return f_->rules.page; }
    Recordset& programs() { return *f_->rules.modes.rs_programs; }
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
    int place() {
        if (programs().end_of_set()) return -1;
        return programs().text("pg_num").toInt();
    }
    QStringList frequencies() {
        QStringList all;
        for (int row = 0; row < page().measurements(); ++row) all += page().cells(row)[2];
        return all;
    }
    static QStringList plan_frequencies(const QList<int>& places) {
        QStringList all;
        for (const int place : places) all += QString::number(1000 + 10 * place) + ".0";
        return all;
    }
    /// Everything on the screen that tells of the kind of acquisition.
    QString kind_flags() {
        return QStringLiteral("plan %1, keys %2, single %3, sat %4, limits %5, kind %6")
            .arg(panel().plan_controls_visible)
            .arg(panel().plan_keys_visible)
            .arg(panel().single_acq_visible)
            .arg(panel().sat_opt_enabled)
            .arg(panel().limits_enabled)
            .arg(state().acq_kind);
    }

    struct VirtualTicks {
        explicit VirtualTicks(const VirtualClock& clock)
            : timer1(clock), timer2(clock), timer3(clock) {}
        FakeTicker timer1, timer2, timer3;
    };

    // The tickers go before the fixture that holds their clock.
    std::unique_ptr<RealtimeFixture> f_;
    std::unique_ptr<VirtualTicks> ticks_;
    std::unique_ptr<Acquisition> acquisition_;
    QList<QPair<int, int>> progress_;
    QList<double> firings_;  ///< when a measurement began
    QStringList told_;       ///< why a pass was cut short
};

void AcquisitionTest::init() {
    f_ = std::make_unique<RealtimeFixture>();
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
    panel().meas_statea[kLevel] = true;
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
    for (Recordset* set :
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
    RealtimeFixture::add_row(f_->database().programmi(), row);
}

void AcquisitionTest::add_plan(const QString& name, const QList<int>& monitor_states,
                               double frequency) {
    RealtimeFixture::add_row(f_->database().gruppo(), {{"nome", name}});
    RealtimeFixture::add_row(f_->database().configurazione(),
                             {{"nome", name}, {"loc_osc1", 9750}, {"loc_osc2", 10600}});
    int number = 0;
    for (const int monitored : monitor_states) {
        add_program(name, number,
                    {{"monitor_state", monitored}, {"frequenza", frequency + 10 * number}});
        ++number;
    }
}

void AcquisitionTest::remove_programs(const QString& plan) {
    Recordset set = f_->database().of_plan("programmi", plan);
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
    const int seconds = kTimeDelays[static_cast<std::size_t>(delay)].seconds;
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
        QTest::newRow(kTimeDelays[static_cast<std::size_t>(i)].entry) << i << seconds[i];
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
    QCOMPARE(time_left_text(-5), QString("0:00:00"));
    QCOMPARE(time_left_text(59), QString("0:00:59"));
    QCOMPARE(time_left_text(3600), QString("1:00:00"));
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
    f_->rules.panel.meas_statea[kLevel] = true;
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

void AcquisitionTest::plans_walk() {
    add_plan("A", {1, 1});
    add_plan("B", {1}, 1500);
    add_plan("C", {1}, 1600);
    acquisition().group();
    acquisition().previous();
    QCOMPARE(panel().grp_name, QString("A"));
    for (const char* name : {"B", "C", "C", "C"}) {
        acquisition().next();
        QCOMPARE(panel().grp_name, QString(name));
        QVERIFY(!f_->link.commands_suspended);
    }
    QCOMPARE(panel().fsat, QString("1600"));
    QCOMPARE(programs().count(), 1);
    for (const char* name : {"B", "A", "A", "A"}) {
        acquisition().previous();
        QCOMPARE(panel().grp_name, QString(name));
    }
    QCOMPARE(panel().fsat, QString("1000"));
    QCOMPARE(programs().count(), 2);
    QCOMPARE(place(), 0);
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::plan_recall_is_suspended() {
    add_plan("A", {1});
    add_plan("B", {});
    add_program("B", 7, {{"loc_osc", false}, {"frequenza", 11000}, {"sat_ad", 1}});
    acquisition().group();
    QList<bool> suspended;
    panel().on_repaint = [&] { suspended += f_->link.commands_suspended; };
    acquisition().next();
    QCOMPARE(suspended, QList<bool>{true});
    QCOMPARE(panel().prog_num, QString("007"));
    QCOMPARE(panel().fsat, QString("11000"));
    QVERIFY(panel().satdigmea_visible);
    acquisition().previous();
    QVERIFY(!panel().satdigmea_visible);
    QCOMPARE(f_->port.opens, 0);
    QVERIFY(!f_->link.commands_suspended);
}

void AcquisitionTest::programs_walk_data() {
    QTest::addColumn<QList<int>>("states");
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("walk");    // ">" next, "<" previous
    QTest::addColumn<QString>("places");  // of the set after each
    QTest::addColumn<QString>("shown");   // program after each
    const QList<int> some{1, 0, 0, 1, 1};
    QTest::newRow("to the end") << some << 0 << ">>>>"
                                << "3444"
                                << "3444";
    QTest::newRow("to the begin") << some << 4 << "<<<<"
                                  << "3000"
                                  << "3000";
    QTest::newRow("unmonitored end") << QList<int>{1, 1, 0, 0} << 0 << ">>>"
                                     << "133"
                                     << "111";
    QTest::newRow("unmonitored begin") << QList<int>{0, 0, 1, 1} << 3 << "<<<"
                                       << "200"
                                       << "222";
    QTest::newRow("back again") << QList<int>{0, 1, 0} << 0 << "><>"
                                << "101"
                                << "111";
    QTest::newRow("one") << QList<int>{1} << 0 << "><>"
                         << "000"
                         << "000";
    QTest::newRow("none monitored") << QList<int>{0, 0, 0} << 1 << "><"
                                    << "20"
                                    << "xx";
}

void AcquisitionTest::programs_walk() {
    QFETCH(QList<int>, states);
    QFETCH(int, from);
    QFETCH(QString, walk);
    QFETCH(QString, places);
    QFETCH(QString, shown);
    add_plan("A", states);
    acquisition().group();
    if (!states.contains(1)) panel().prog_num = "x";
    for (int i = 0; i < from; ++i) programs().move_next();
    QString walked;
    QString seen;
    for (const QChar step : walk) {
        if (step == u'>')
            acquisition().next_prog();
        else
            acquisition().previous_prog();
        walked += QString::number(place());
        seen += panel().prog_num.right(1);
        QVERIFY(!f_->link.commands_suspended);
    }
    QCOMPARE(walked, places);
    QCOMPARE(seen, shown);
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::program_walk_sends_nothing() {
    add_plan("A", {1});
    add_program("A", 1, {{"loc_osc", false}, {"frequenza", 11000}, {"sat_ad", 1}});
    acquisition().group();
    QList<bool> suspended;
    panel().on_repaint = [&] { suspended += f_->link.commands_suspended; };
    acquisition().next_prog();
    QCOMPARE(panel().fsat, QString("11000"));
    QVERIFY(panel().satdigmea_visible);
    acquisition().previous_prog();
    QCOMPARE(panel().fsat, QString("1000"));
    QCOMPARE(suspended, (QList<bool>{true, true}));
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::no_plan_open() {
    state().acq_kind = kPlan;
    acquisition().previous();
    acquisition().next();
    acquisition().previous_prog();
    acquisition().next_prog();
    QVERIFY(!f_->link.commands_suspended);
    acquisition().multiple_acq();
    QVERIFY(!ticks_->timer2.running());
    panel().cmdstart = "before";
    panel().time_state = LampColour::green;
    acquisition().cmdstart_Click();
    QVERIFY(!ticks_->timer1.running());
    QCOMPARE(panel().cmdstart, QString("before"));
    QVERIFY(panel().time_state == LampColour::green);
    acquisition().stop();
    QVERIFY(!state().plan_run_active);
    QCOMPARE(panel().cmdstart, QString("&Stop"));
    run_for(100);
    QCOMPARE(f_->port.opens, 0);
    // What can be done without a plan still works.
    acquisition().single();
    acquisition().single_acq();
    QCOMPARE(page().measurements(), 1);
}

void AcquisitionTest::progress_is_that_of_the_program() {
    add_plan("A", {1, 0, 1, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(3.5);
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 3}, {2, 3}}));
    // The user walks back to the begin within the pass.
    acquisition().previous_prog();
    acquisition().previous_prog();
    run_for(30);
    QCOMPARE(frequencies(), plan_frequencies({0, 2, 0, 2, 3}));
    QCOMPARE(progress_.mid(2), (QList<QPair<int, int>>{{1, 3}, {2, 3}, {3, 3}, {0, 0}}));
}

void AcquisitionTest::progress_is_that_of_the_plan_that_the_pass_is_in() {
    add_plan("A", {1, 1, 1});
    add_plan("B", {1, 1}, 1500);
    acquisition().group();
    // Without a pass there is nothing to take away from the status line.
    acquisition().next();
    acquisition().previous();
    QCOMPARE(progress_, (QList<QPair<int, int>>()));
    acquisition().multiple_acq();
    run_for(1.5);
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 3}}));
    acquisition().next();
    QCOMPARE(progress_.mid(1), (QList<QPair<int, int>>{{0, 0}}));
    run_for(30);
    QCOMPARE(frequencies(), QStringList({"1000.0", "1500.0", "1510.0"}));
    QCOMPARE(progress_.mid(2), (QList<QPair<int, int>>{{1, 2}, {2, 2}, {0, 0}}));
}

void AcquisitionTest::progress_counts_the_programs_as_they_are() {
    add_plan("A", {1, 0, 0, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(1.5);
    // The plan screen monitors another program while the pass runs.
    Recordset set = f_->database().of_plan("programmi", "A");
    set.find_first("pg_num", "002");
    RealtimeFixture::change_row(set, {{"monitor_state", 1}});
    run_for(30);
    QCOMPARE(frequencies(), plan_frequencies({0, 2, 3}));
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 2}, {2, 3}, {3, 3}, {0, 0}}));
}

void AcquisitionTest::a_level_that_the_mode_loses_is_told_once() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->values["SYMBRATEQPSK?"] = "27500";
    f_->values["ATTEN?"] = "2";
    f_->values["LEVDCP?"] = "P 61.5";
    panel().meas_stated[kDcpLevel] = true;
    f_->rules.modes.digitalmode();
    acquisition().single_acq();
    QCOMPARE(page().cells(0)[4], QString("61.5"));
    QCOMPARE(told, QStringList());
    f_->rules.modes.Form_Activate();
    for (int row = 1; row < 3; ++row) {
        acquisition().single_acq();
        QCOMPARE(page().cells(row)[4], QString());
        QCOMPARE(told, QStringList("Level not kept: choose QPSK again"));
    }
    f_->program.corrected.keep_mode = true;
    f_->rules.modes.Form_Activate();
    acquisition().single_acq();
    QCOMPARE(page().cells(3)[4], QString("61.5"));
}

void AcquisitionTest::a_bandwidth_that_is_not_that_of_the_program_is_told() {
    const QString other("Bandwidth not that of the program: type it");
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->values["ATTEN?"] = "2";
    f_->values["LEVDCP?"] = "P 61.5";
    panel().meas_stated[kDcpLevel] = true;
    add_plan("A", {1});
    add_program("A", 1, {{"sat_ad", 1}, {"satchbw", 8}});
    add_program("A", 2, {{"sat_ad", 1}, {"satchbw", 27}});
    add_program("A", 3, {{"sat_ad", 1}, {"satchbw", 40}});
    acquisition().group();
    panel().chbws = "8";
    acquisition().multiple_acq();
    run_for(2.5);
    QCOMPARE(told, QStringList());
    run_for(60);
    QCOMPARE(told, QStringList(other));
    QCOMPARE(f_->commands().filter("CHBW"), QStringList({"CHBW 08", "CHBW 08", "CHBW 08"}));
    f_->program.costs.begin_anew();
    f_->program.corrected.plan_width = true;
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList(other));
    QCOMPARE(f_->commands().filter("CHBW"), QStringList({"CHBW 08", "CHBW 27", "CHBW 36"}));
}

void AcquisitionTest::a_program_without_a_bandwidth_has_no_other_one() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->values["ATTEN?"] = "2";
    f_->values["LEVDCP?"] = "P 61.5";
    panel().meas_stated[kDcpLevel] = true;
    add_plan("A", {1});
    add_program("A", 1, {{"sat_ad", 1}});
    acquisition().group();
    panel().chbws = "27";
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(f_->commands().filter("CHBW"), QStringList("CHBW 27"));
    QCOMPARE(told, QStringList());
}

void AcquisitionTest::an_antenna_that_is_not_switched_is_told() {
    const QString not_switched(
        "Antenna not switched for each program: tick Tune everything in a pass (--full-tune)");
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    panel().meas_statea[kLevel] = true;
    add_plan("A", {1});
    add_program("A", 1, {{"lnb_volt", 1}});
    add_program("A", 2, {{"lnb_volt", 1}});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList());
    add_program("A", 3, {{"lnb_volt", 2}});
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList(not_switched));
    told.clear();
    f_->program.costs.begin_anew();
    f_->program.corrected.full_tune = true;
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList());
}

void AcquisitionTest::plan_deleted_in_a_pass_data() {
    QTest::addColumn<bool>("moved");
    QTest::newRow("found at the next step") << false;
    QTest::newRow("found by the user") << true;
}

void AcquisitionTest::plan_deleted_in_a_pass() {
    QFETCH(bool, moved);
    add_plan("A", {1, 1, 1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(11.5);
    QCOMPARE(frequencies(), plan_frequencies({0}));
    empty_database();
    if (moved) programs().move_first();
    run_for(5);
    QVERIFY(!state().plan_run_active);
    QVERIFY(!ticks_->timer2.running());
    QVERIFY(!f_->link.commands_suspended);
    QCOMPARE(progress_.last(), qMakePair(0, 0));
    // The timed firings go on, with a single element too.
    run_for(60);
    QVERIFY(!state().plan_run_active);
    QVERIFY(state().ticks_left > 0);
    const int rows = page().measurements();
    acquisition().single();
    run_for(12);
    QCOMPARE(page().measurements(), rows + 1);
}

void AcquisitionTest::plan_deleted_between_two_firings() {
    add_plan("A", {1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(5);
    empty_database();
    run_for(7);
    QVERIFY2(!state().plan_run_active, "the countdown stays locked");
    QCOMPARE(f_->port.opens, 0);
    acquisition().single();
    run_for(12);
    QCOMPARE(page().measurements(), 1);
}

void AcquisitionTest::plan_deleted_before_a_pass() {
    add_plan("A", {1, 1});
    acquisition().group();
    remove_programs("A");
    acquisition().multiple_acq();
    run_for(5);
    QVERIFY(!ticks_->timer2.running());
    QVERIFY2(!state().plan_run_active, "the countdown stays locked");
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::database_held_at_a_firing() {
    add_plan("A", {1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    const QStringList& told = told_;
    QSqlQuery("PRAGMA busy_timeout = 1", f_->database().connection());
    {
        const OtherConnection other(f_->path(kDatabaseFile));
        other.run("BEGIN EXCLUSIVE");
        run_for(11);
        QCOMPARE(told.size(), 1);
        QVERIFY2(told[0].contains("in use by another program"), qPrintable(told[0]));
        QCOMPARE(panel().time_state, LampColour::red);
        QVERIFY(!state().plan_run_active);
        // The firings go on, and what runs can be ended.
        run_for(10);
        QCOMPARE(told.size(), 2);
        other.run("ROLLBACK");
    }
    run_for(10);
    QCOMPARE(told.size(), 2);
    QVERIFY(state().plan_run_active);
    {
        const OtherConnection other(f_->path(kDatabaseFile));
        other.run("BEGIN EXCLUSIVE");
        acquisition().stop();
        QVERIFY(!ticks_->timer2.running());
    }
}

void AcquisitionTest::replace_programs(const QString& plan) {
    const OtherConnection other(f_->path(kDatabaseFile));
    // As one that exports the rows and imports them again: none keeps its place.
    other.run("CREATE TEMP TABLE kept AS SELECT * FROM programmi WHERE nome = '" + plan + "'");
    other.run("UPDATE kept SET id = id + 1000");
    other.run("DELETE FROM programmi WHERE nome = '" + plan + "'");
    other.run("INSERT INTO programmi SELECT * FROM kept");
}

void AcquisitionTest::start_timed_plan() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
}

void AcquisitionTest::a_plan_replaced_between_two_firings() {
    start_timed_plan();
    run_for(5);
    replace_programs("A");
    run_for(12);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 2}));
    QCOMPARE(told_, QStringList());
    acquisition().stop();
    // So is a pass on demand.
    replace_programs("A");
    acquisition().multiple_acq();
    run_for(10);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 2, 0, 1, 2}));
}

void AcquisitionTest::a_plan_replaced_in_a_pass() {
    start_timed_plan();
    run_for(11.5);
    QCOMPARE(frequencies(), plan_frequencies({0}));
    replace_programs("A");
    run_for(6);
    // What was not measured in this pass is told; the next one is whole again.
    QCOMPARE(told_.size(), 1);
    QVERIFY2(told_[0].startsWith("Another program deleted or replaced"), qPrintable(told_[0]));
    run_for(15);
    QCOMPARE(told_.size(), 1);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 0, 1, 2}));
}

void AcquisitionTest::a_firing_without_a_plan() {
    start_timed_plan();
    remove_programs("A");
    run_for(11.5);
    QCOMPARE(told_.size(), 1);
    QVERIFY2(told_[0].startsWith("The plan has no programs"), qPrintable(told_[0]));
    QCOMPARE(panel().time_state, LampColour::red);
    QVERIFY(!state().plan_run_active);
    f_->rules.modes.rs_programs.reset();
    run_for(10);
    QCOMPARE(told_.size(), 2);
    QCOMPARE(told_[1], QString("No plan is open."));
    QCOMPARE(panel().time_state, LampColour::red);
}

void AcquisitionTest::what_is_timed_stops_without_its_plan() {
    start_timed_plan();
    remove_programs("A");
    run_for(11.5);
    QVERIFY(ticks_->timer1.running());
    acquisition().cmdstart_Click();
    QVERIFY(!ticks_->timer1.running());
    QCOMPARE(panel().cmdstart, QString("&Start"));
}

void AcquisitionTest::another_plan_that_cannot_be_read() {
    add_plan("A", {1});
    add_plan("B", {1});
    acquisition().group();
    const QString before = panel().grp_name;
    const Bookmark program = f_->rules.modes.rs_programs->bookmark();
    QSqlQuery("PRAGMA busy_timeout = 1", f_->database().connection());
    const OtherConnection other(f_->path(kDatabaseFile));
    // The list of plans can still be walked, the programs of its next plan cannot be opened.
    other.run("ALTER TABLE configurazione RENAME TO hidden");
    QVERIFY(faults([&] { acquisition().next(); }));
    QCOMPARE(panel().grp_name, before);
    QCOMPARE(f_->rules.modes.rs_programs->bookmark(), program);
}

void AcquisitionTest::link_down() {
    add_plan("A", {1, 0, 1});
    f_->link.port_connected = false;
    acquisition().single_acq();
    QVERIFY(!state().plan_run_active);
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().start();
    acquisition().cmdstart_Click();
    run_for(11.5);
    QCOMPARE(panel().prog_num, QString("000"));
    run_for(1);
    QCOMPARE(panel().prog_num, QString("002"));
    run_for(1);
    QVERIFY(!state().plan_run_active);
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 2}, {2, 2}, {0, 0}}));
    // At 10 s the first pass, of three seconds; ten ticks behind its end the next.
    run_for(9);
    QVERIFY(!state().plan_run_active);
    run_for(1);
    QVERIFY(state().plan_run_active);
    QCOMPARE(panel().time_act, QString("21/11 10:00:23"));
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(page().measurements(), 0);
}

void AcquisitionTest::link_lost_in_a_pass() {
    add_plan("A", {1, 1, 1, 1});
    f_->on_command = [this](const QByteArray& command) {
        if (command == "FREQ 1010.0") f_->refuse(command);
    };
    acquisition().group();
    acquisition().multiple_acq();
    run_for(40);
    QVERIFY(!f_->link.port_connected);
    QCOMPARE(f_->commands(), cycle_at("1000.0") + (QStringList{"MEASURE", "FREQ 1010.0",
                                                               "FREQ 1010.0", "FREQ 1010.0"}));
    QCOMPARE(frequencies(), plan_frequencies({0}));
    // The walk goes on to the end.
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 4}, {2, 4}, {3, 4}, {4, 4}, {0, 0}}));
    QCOMPARE(panel().prog_num, QString("003"));
    QVERIFY(!state().plan_run_active);
    // The next pass measures again once the meter is back.
    f_->raw.clear();
    f_->on_command = nullptr;
    f_->link.port_connected = true;
    acquisition().multiple_acq();
    run_for(40);
    QCOMPARE(frequencies(), plan_frequencies({0, 0, 1, 2, 3}));
}

void AcquisitionTest::end_of_the_program_in_a_measurement() {
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "ATTEN 6"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, acquisition().single_acq());
    QVERIFY(!state().plan_run_active);
    QCOMPARE(page().measurements(), 0);
}

void AcquisitionTest::end_of_the_program_in_a_pass() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(1.5);
    QCOMPARE(page().measurements(), 1);
    QVERIFY(!f_->link.left_off);
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "ATTEN 6"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, run_for(20));
    QVERIFY(f_->link.left_off);
    QCOMPARE(f_->link.left_off->in(f_->program.texts),
             QString("a measurement was broken off and has no row, 1 rows are on the page"));
}

void AcquisitionTest::what_goes_on_by_itself_tells_how_far_it_is() {
    const auto told = [this] {
        const std::optional<Said> said = acquisition().running();
        return said ? said->in(f_->program.texts) : QString();
    };
    add_plan("A", {1, 1, 1});
    acquisition().group();
    QCOMPARE(told(), QString());
    acquisition().multiple_acq();
    run_for(1.5);
    QCOMPARE(told(), QString("a run was between two measurements, 1 rows are on the page"));
    run_for(20);
    QCOMPARE(told(), QString());
    acquisition().cmdstart_Click();
    QCOMPARE(told(), QString("a run was between two measurements, 3 rows are on the page"));
    acquisition().stop();
    QCOMPARE(told(), QString());
}

void AcquisitionTest::a_week_of_a_plan() {
#ifdef M47_SANITIZED
    constexpr double kWeek = 2 * 24 * 3600;  // shorter, as everything takes six times as long
#else
    constexpr double kWeek = 7 * 24 * 3600;
#endif
    // Alone, two, three and four in a row, and at both ends.
    const QList<int> states{0, 1, 1, 0, 1, 1, 1, 0, 0, 1, 1, 1, 1, 0, 0,
                            0, 1, 1, 0, 1, 1, 0, 0, 0, 0, 1, 1, 1, 1, 0};
    add_plan("WEEK", states);
    const QStringList pass = plan_frequencies(measured_places(states));
    QCOMPARE(states.size(), 30);
    QCOMPARE(pass.size(), 17);

    QList<AskedLevel> asked;
    QByteArray tuned;
    qint64 other_commands = 0;
    f_->on_command = [&](const QByteArray& command) {
        if (command.startsWith("FREQ ")) {
            tuned = command.mid(5);
        } else if (command == "LEVANL?") {
            // A level of its own for every question, 30.0 to 89.9.
            const auto tenths = 300 + asked.size() % 600;
            const QByteArray level = QByteArray::number(static_cast<double>(tenths) / 10, 'f', 1);
            f_->values["LEVANL?"] = "L " + level;
            asked += {tuned, level};
        } else if (command != "MEASURE" && command != "ATTEN 6") {
            ++other_commands;
        }
    };
    QStringList times;
    f_->rules.cycle.on_row = [&](const QStringList&) {
        times += f_->clock.date_time().toString("dd/MM/yy\tHH:mm:ss");
    };
    QList<double> ends;
    QList<double> begins;
    make_acquisition({.progress = [&](int place, int monitored) {
        if (place == 1) begins += now();
        if (monitored == 0) ends += now();
    }});

    f_->rules.log.open(f_->path("week.log"), page());
    acquisition().group();
    panel().time_delay = 8;
    acquisition().time_delay_Click();
    acquisition().start();
    acquisition().cmdstart_Click();
    for (double hour = 3600; hour <= kWeek; hour += 3600) {
        run_until(hour);
        f_->view.progress_values = {0};
        f_->port.take_commands();
    }
    for (int second = 0; state().plan_run_active && second < 120; ++second) run_for(1);
    acquisition().cmdstart_Click();

    QCOMPARE(other_commands, 0);
    QVERIFY(!state().plan_run_active);
    QVERIFY(f_->link.port_connected);
    QCOMPARE(begins.size(), ends.size());
    QVERIFY(std::abs(begins[0] - 601) < 0.01);
    for (qsizetype i = 1; i < begins.size(); ++i) {
        // 600 ticks, the first within a second of the end of the pass, and one to the first step.
        const double rest = begins[i] - ends[i - 1];
        QVERIFY2(rest > 599.9 && rest < 601.1, qPrintable(QString::number(rest)));
    }
    const double round = (begins.last() - begins.first()) / static_cast<double>(begins.size() - 1);
    QCOMPARE(begins.size(), static_cast<qsizetype>((kWeek - begins.first()) / round) + 1);

    QCOMPARE(asked.size(), ends.size() * pass.size());
    QCOMPARE(page().measurements(), static_cast<int>(asked.size()));
    QCOMPARE(times.size(), asked.size());
    QFile log(f_->path("week.log"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromLatin1(log.readAll()).split("\r\n");
    QCOMPARE(lines.size(), asked.size() + 1);
    QCOMPARE(lines.last(), QString());
    for (qsizetype i = 0; i < asked.size(); ++i) {
        const QString frequency = QString::fromLatin1(asked[i].frequency);
        QCOMPARE(frequency, pass[i % pass.size()]);
        const QString line = times[i] + u'\t' + frequency + "\t9750\t" +
                             QString::fromLatin1(asked[i].level) + "\t\t\t\t\t\t";
        QCOMPARE(page().cells(static_cast<int>(i)).join(u'\t'), line);
        QCOMPARE(lines[i], line);
    }
    qInfo("%lld passes, %lld measurements", static_cast<long long>(ends.size()),
          static_cast<long long>(asked.size()));
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::AcquisitionTest)
#include "acquisition_test.moc"
