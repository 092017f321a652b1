// SPDX-License-Identifier: GPL-3.0-or-later
// From the rows of the page to what is plotted of them.
#pragma once

#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>

#include "measurement_log.h"
#include "row_time.h"
#include "trend_data.h"
#include "trend_limits.h"
#include "trend_nearest.h"
#include "trend_sampling.h"
#include "trend_table.h"
#include "trend_window.h"

namespace m47::trend {

constexpr double kDay = 86400;

struct Cells {
    QString date = QStringLiteral("21/11/26");
    QString time = QStringLiteral("10:00:00");
    QString fr = QStringLiteral("11778.0");
    QString osc = QStringLiteral("10600");
    QString lev = QStringLiteral("58.3");
    QString ber = QStringLiteral("2.0E-4");
    QString mer = QStringLiteral("14.2");
    QString status;
};

inline QStringList row(const Cells& cells) {
    return {cells.date, cells.time, cells.fr,  cells.osc, cells.lev,   cells.ber,
            QString(),  QString(),  cells.mer, QString(), cells.status};
}

inline QString clock_text(int seconds) {
    return QTime(0, 0).addSecs(seconds).toString(QStringLiteral("HH:mm:ss"));
}

/// A page of one program with a row every `step` seconds from ten o'clock on.
inline measurement::PageStore page_of_levels(const QStringList& levels, int step = 10) {
    measurement::PageStore page;
    for (int k = 0; k < levels.size(); ++k) {
        Cells cells;
        cells.time = clock_text(36000 + k * step);
        cells.lev = levels[k];
        page.append(row(cells));
    }
    return page;
}

inline TrendData data_of(const measurement::PageStore& page) {
    TrendData data;
    data.update(page);
    return data;
}

/// The curve as text, a gap as "|": "58.3 58.4 | 58.6".
inline QString drawn(const std::vector<TrendSpot>& spots) {
    QStringList texts;
    for (const TrendSpot& spot : spots)
        texts << (std::isnan(spot.value) ? QStringLiteral("|")
                                         : QString::number(spot.value, 'g', 6));
    return texts.join(u' ');
}

inline TrendSamples all_of(const TrendData& data, measurement::Quantity quantity,
                           int columns = 1000) {
    return sample_trend(*data.series().front(), quantity, data.time(), columns);
}

class TrendTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_cell_is_read_as_the_limits_read_it_data();
    void a_cell_is_read_as_the_limits_read_it();

    void dates_and_times_are_those_of_the_row();

    void midnight_and_the_turn_of_the_year_are_no_gap();

    void what_was_not_measured_is_a_gap();

    void a_quantity_that_was_never_measured_draws_nothing();

    void a_long_pause_is_a_gap_and_a_short_one_is_not();

    void two_rows_days_apart_are_joined_when_nothing_is_usual_yet();

    void a_pass_that_left_a_program_out_is_a_gap();

    void programs_are_told_apart_by_frequency_and_oscillator();

    void rows_without_a_place_are_left_out();

    void extremes_keep_their_marks_and_last_is_never_stale();

    void a_count_without_errors_lies_at_the_foot_of_the_logarithmic_axis();

    void failed_rows_are_marked_where_they_have_a_value();

    void rows_are_taken_as_they_come();

    void a_clock_that_was_set_back_keeps_the_curve_in_order();

    void a_reloaded_log_plots_as_the_run_that_wrote_it();

    void dense_points_keep_extremes_gaps_and_failures();

    void every_second_row_empty_leaves_no_line_at_all();

    void only_what_is_in_sight_is_sampled_with_its_neighbours();
    void the_nearest_point_has_a_value_and_lies_within_reach();

    void the_value_axis_shows_limits_but_never_presses_the_values_flat();

    void the_value_axis_has_its_room_and_its_shortest_length_data();
    void the_value_axis_has_its_room_and_its_shortest_length();

    void the_window_shows_all_until_the_user_zooms_and_follows_the_newest_row();

    void a_window_that_does_not_follow_stands_still();

    void zooming_stays_within_what_can_be_shown();

    void one_row_alone_has_a_minute_around_it();

    void the_table_holds_every_row_and_leaves_gaps_empty();

    void a_long_table_that_cannot_be_written_says_so();

    void a_table_that_cannot_be_written_says_so();
};

}  // namespace m47::trend
