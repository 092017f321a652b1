// SPDX-License-Identifier: GPL-3.0-or-later
// The sweep of the band: what is asked, what is found, what is written, and how the meter is left.
#pragma once

#include <QTest>

namespace m47::band {

class BandTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    // band_test.cpp
    void a_curve_keeps_its_samples_in_order();
    void peaks_stand_out_of_their_valleys();
    void a_plain_sweep_asks_every_step();
    void a_clever_sweep_asks_where_something_is();
    void a_silent_frequency_is_not_asked_again();
    void an_empty_band_is_asked_coarsely_alone();
    void carriers_have_centre_width_level_and_height();
    void a_narrow_carrier_is_not_as_wide_as_the_filter();
    void slopes_that_no_filter_makes_are_not_taken_for_one();
    void a_carrier_at_the_end_of_the_band_is_none();
    void what_is_asked_stays_bounded();
    // sweep_table_test.cpp
    void rows_come_back_as_they_were_written();
    void a_table_is_read_as_far_as_it_is_sound_data();
    void a_table_is_read_as_far_as_it_is_sound();
    void carriers_are_written_with_their_names();
    void carriers_are_named_by_what_fits_data();
    void carriers_are_named_by_what_fits();
    void the_sky_lies_above_or_below_its_oscillator();
    // band_run_test.cpp
    void a_choice_is_the_passes_over_the_band_data();
    void a_choice_is_the_passes_over_the_band();
    void traces_hold_the_last_the_highest_and_the_mean();
    void a_weaker_pass_cuts_no_notch_into_the_highest();
    void a_reference_is_that_of_its_feed_and_unit();
    void a_run_passes_over_all_states_and_sets_back_once();
    void a_run_that_repeats_goes_on_until_it_is_stopped();
    void levels_in_units_that_nobody_knows_are_left_out_data();
    void levels_in_units_that_nobody_knows_are_left_out();
    void a_pass_ends_where_the_unit_was_changed();
    void a_unit_changed_between_two_passes_is_told();
    void a_unit_set_back_within_a_pass_is_noticed();
    void a_run_tells_each_end_in_one_sentence();
    void carriers_become_programs();
    // meter_levels_test.cpp
    void a_sweep_sends_no_more_than_it_needs();
    void the_meter_is_left_as_it_was();
    void what_the_meter_does_not_tell_is_not_set_back();
    void a_sweep_that_is_stopped_leaves_the_meter_in_order();
    void a_lost_link_ends_a_sweep();
    void a_meter_that_refuses_is_set_back_all_the_same();
    void what_is_refused_in_setting_back_keeps_nothing_else_from_it();
    void what_was_never_changed_is_not_named();
    void a_frequency_that_is_not_taken_has_no_level();
    void a_doubtful_level_is_asked_again();
    void a_sweep_of_the_simulated_sky_finds_its_carriers();
    void a_faulty_line_gives_true_levels_or_none();
};

}  // namespace m47::band
