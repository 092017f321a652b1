// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plan_run.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include "realtime_fixture.h"

namespace m47::acquisition {

/// Passes over a plan without anybody at the screen.
class PlanRunTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void one_pass();
    void passes_back_to_back();
    void passes_at_fixed_times();
    void a_clock_that_is_set_moves_no_firing_data();
    void a_clock_that_is_set_moves_no_firing();
    void the_date_changes_within_a_pass();
    void a_pass_cut_short_is_told();
    void a_pass_longer_than_the_interval_leaves_firings_out();
    void told_to_stop_between_two_measurements();
    void told_to_stop_while_waiting();
    void told_to_pause_it_ends_behind_a_whole_pass();
    void a_lost_link_ends_the_run();
    void after_a_lost_link_the_lost_program_comes_first();
    void a_program_that_the_meter_refuses_is_left_out();
    void tries_come_at_growing_intervals();
    void told_to_stop_while_the_meter_is_away();
    void a_doubtful_measurement_is_taken_again();
    void a_meter_that_is_away_at_the_start_is_waited_for();
    void a_plan_that_was_emptied_is_told_once();
    void a_pass_that_measures_nothing_is_told_once();
    void a_plan_that_was_replaced_is_measured_again();
    void the_same_reason_is_told_again_behind_a_measurement();
    void a_row_that_cannot_be_taken_again_ends_no_run();
    void progress();
    void full_tune();
    void full_tune_leaves_out_what_is_none();
    void full_tune_checks_against_the_oscillator_it_sends_data();
    void full_tune_checks_against_the_oscillator_it_sends();
    void full_tune_sends_the_bandwidth_of_the_program();
    void a_program_without_its_oscillator_is_left_out_and_told();
    void each_program_has_a_noise_frequency_of_its_own();
    void without_full_tune_nothing_more_is_sent();
    void plans_are_chosen_by_their_name();

  private:
    void add_program(int number, const QMap<QString, QVariant>& fields = {});
    PlanRun make_run(const PlanRunOrder& order);
    /// The frequencies on the page, without their decimals.
    QStringList measured() const;
    int asked(const QString& command) const { return static_cast<int>(begun_.count(command)); }
    double now() const { return f_->clock.elapsed(); }

    std::unique_ptr<realtime::RealtimeFixture> f_;
    QStringList begun_;      ///< the commands in the order of their arrival
    QList<double> firings_;  ///< when the first program of the plan was tuned
    QStringList remarks_;
    QStringList progress_;
    QList<double> tries_;
};

}  // namespace m47::acquisition
