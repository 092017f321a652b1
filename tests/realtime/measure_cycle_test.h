// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "measure_cycle.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include "realtime_fixture.h"
#include "row_time.h"

namespace m47::realtime {

inline const QByteArray kQpskLines("CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 1.25\rMER   : 12.3");
inline const QString kEight(8, u' ');
inline const QString kSix(6, u' ');

inline std::array<LampColour, 6> lamps(
    std::initializer_list<std::pair<std::size_t, LampColour>> lit) {
    std::array<LampColour, 6> all{};
    for (const auto& [lamp, colour] : lit) all[lamp] = colour;
    return all;
}

/// Whole measurements: what goes to the meter, what the panel shows, what is kept of it.
class MeasureCycleTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void analog_measurement();
    void digital_measurement();
    void digital_measurement_in_another_unit_data();
    void digital_measurement_in_another_unit();
    void complete_digital_measurement();
    void complete_analog_measurement();
    void without_a_link_only_the_lamps_go_out();
    void with_no_measure_ticked_only_the_lamps_go_out();
    void results_are_blanked_first();
    void limits_are_clamped_by_the_unit_data();
    void limits_are_clamped_by_the_unit();
    void a_level_equal_to_both_limits_fails();
    void an_alarm_without_limits_checks_nothing_where_chosen();
    void an_alarm_with_one_limit_checks_that_one_where_chosen();
    void a_cycle_that_ends_at_the_noise_is_told();
    void an_alarm_without_limits_is_told();
    void digital_cn_ends_the_cycle();
    void digital_noise_ends_the_cycle();
    void analog_cn_ends_the_cycle();
    void analog_noise_ends_the_cycle();
    void qpsk_label_missing_ends_the_cycle_data();
    void qpsk_label_missing_ends_the_cycle();
    void other_measures_decide_whether_there_is_a_cycle();
    void error_rates_that_start_nothing();
    void status_data();
    void status();
    void new_results_are_those_of_the_program_shown();
    void each_cycle_starts_anew();
    void row_of_the_mode_and_cycle_of_the_frame();
    void row_of_another_mode();
    void each_row_is_announced();
    void what_was_sent_and_answered_is_kept_beside_the_row();
    void the_digital_level_is_kept_though_the_row_is_analog();
    void the_limits_that_were_checked_are_kept();
    void complete_measures_are_kept();
    void a_unit_that_was_lost_on_its_way_is_not_known();
    void log_grows_by_one_line_a_measurement();
    void log_that_cannot_be_written_loses_its_line();
    void link_lost_within_the_wait();
    void link_lost_at_any_moment();
    void a_refused_command_loses_the_link();
    void the_end_of_the_program_passes_through_data();
    void the_end_of_the_program_passes_through();
    void measures_that_run_to_their_end();
    void the_level_alone_is_tuned_once_and_asked_again();
    void the_level_alone_leaves_the_screen_as_it_was();
    void the_digital_level_alone_is_ranged_anew_once_it_has_moved();
    void a_level_alone_in_a_unit_chosen_at_the_meter_is_none();
    void a_level_alone_that_is_in_doubt_begins_anew();
    void the_level_alone_ends_with_the_link();
    void the_cn_alone_is_tuned_once_and_asked_again();
    void the_mer_alone_stays_in_its_mode();
    void the_mer_alone_is_left_also_when_it_is_stopped();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    RealtimeState& state() { return f_->state(); }
    measurement::PageModel& page() { return f_->rules.page; }

    void measure_and_store();
    void show_digital();
    void tick(std::initializer_list<DigitalMeasure> measures);
    /// Row `row` of the page, its cells separated by "|".
    QString row(int number = 0);
    /// The cells of `row` behind date and time.
    QString results(int number = 0) { return row(number).section(u'|', 2); }
    QByteArray log_bytes();

    std::unique_ptr<RealtimeFixture> f_;
};

}  // namespace m47::realtime
