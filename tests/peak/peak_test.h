// SPDX-License-Identifier: GPL-3.0-or-later
// The search for the peak on made-up skies, on the simulated one, and over the line.
#pragma once

#include <QTest>

namespace m47::peak {

class PeakTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_parabola_has_its_summit();
    void what_has_no_summit();
    void satellites_along_the_arc();
    void the_carrier_alone();

    void the_peak_is_found_data();
    void the_peak_is_found();
    void the_nearest_of_two_is_taken();
    void a_strong_neighbour_does_not_draw_the_carrier();
    void on_the_peak_already();
    void the_span_is_never_left();
    void in_any_span_data();
    void in_any_span();
    void nothing_there();
    void nothing_better_goes_back();
    void cancelled_at_any_step();
    void an_exception_stops_the_motor();
    void a_motor_that_cannot_be_told();
    void a_lost_answer_is_asked_again();
    void a_silent_meter_ends_it();
    void points_are_told();
    void under_the_simulated_sky();

    void a_whole_search_over_the_line();
    void a_level_that_rises_to_the_end_of_the_span_is_told();
    void a_motor_at_its_limit_is_noticed_where_the_level_shows_it();
    void nothing_better_over_the_line();
    void readings_are_told_with_their_place();
    void stopped_while_it_turns_data();
    void stopped_while_it_turns();
    void lost_while_it_turns();
    void a_level_refused_three_times_leaves_the_dish_where_it_says();
    void a_refused_stop_is_told();
    void a_drive_goes_out_once();
    void without_levels_it_goes_back();
    void a_unit_changed_at_the_meter_has_no_peak_data();
    void a_unit_changed_at_the_meter_has_no_peak();

    void drives_over_the_line();
    void levels_over_the_line_data();
    void levels_over_the_line();
    void mer_over_the_line();
    void the_line_is_lost();
    void told_to_end_the_motor_is_stopped();
    void told_to_end_the_meter_measures_again();
    void every_kind_of_fault();
};

}  // namespace m47::peak
