// SPDX-License-Identifier: GPL-3.0-or-later
// The tab "Trend" beside the measurement page, used as a person does.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include "custom_plot.h"
#include "program_in_folder.h"
#include "realtime.h"

namespace m47::shell {

class TrendViewTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    realtime::Realtime* screen_ = nullptr;
    int second_ = 0;

    template <class Kind>
    Kind* find(const char* name) {
        return ProgramInFolder::find<Kind>(name, screen_);
    }
    QCustomPlot* plot() { return find<QCustomPlot>("trend_plot"); }
    void open_tab(int index);
    void press(const char* action);
    /// A row of the program at `fr`, ten seconds after the one before.
    void add_row(const QString& level, const QString& fr = QStringLiteral("11778.0"),
                 const QString& status = QStringLiteral("PASS"));
    void add_rows(int count);
    QCPRange time_axis() { return plot()->axisRect(0)->axis(QCPAxis::atBottom)->range(); }
    QCPRange level_axis() { return plot()->axisRect(0)->axis(QCPAxis::atLeft)->range(); }
    void turn_wheel(Qt::KeyboardModifiers keys);
    /// How many pixels of the plot are of the red that is left to crosses.
    int red_pixels();
    QByteArray content(const QString& path);

  private Q_SLOTS:
    void init();
    void cleanup() { end_program(); }

    void the_page_is_in_front_and_nothing_of_the_trend_is_made_before_it_is_seen();
    void where_what_draws_and_prints_is_missing_it_says_so();
    void where_there_is_no_room_for_all_charts_a_list_chooses();
    void a_picture_has_all_charts_whatever_the_window();
    void the_value_under_the_pointer_is_told();
    void captions_and_tooltips_stand_in_both_languages();
    void an_empty_page_says_so_and_clearing_empties_the_trend();
    void clearing_behind_the_hidden_tab_is_noticed();
    void a_reloaded_log_is_plotted();
    void a_row_that_comes_moves_the_axis_while_following();
    void the_wheel_zooms_time_and_with_ctrl_values_until_reset();
    void dragging_away_from_the_newest_row_ends_the_following();
    void keys_pan_and_zoom();
    void quantities_and_programs_are_chosen();
    void nothing_chosen_is_an_empty_plot_and_no_fault();
    void failed_rows_are_marked_in_red();
    void limits_are_bands_as_soon_as_they_are_ticked();
    void the_legend_says_minimum_maximum_and_last();
    void the_legend_names_the_unit_beside_levels_alone();
    void the_legend_tells_curves_of_one_program_apart_by_their_unit();
    void the_table_is_saved_through_the_dialog_and_reads_back();
    void the_dialog_gives_the_suffix_of_the_chosen_kind();
    void pictures_and_pages_are_whole_and_light_whatever_the_palette();
    void a_file_that_cannot_be_written_shows_one_box_and_leaves_nothing();
};

}  // namespace m47::shell
