// SPDX-License-Identifier: GPL-3.0-or-later
// The main window and its screens, used as a person does, on a link without a meter.
#pragma once

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>

#include "band_sweep.h"
#include "box_answers.h"
#include "fake_port.h"
#include "fault.h"
#include "handler.h"
#include "meter_in_process.h"
#include "port_delegate.h"
#include "program_in_folder.h"
#include "realtime.h"
#include "realtime_tooltips.h"
#include "satellite_tables.h"
#include "screen_table.h"
#include "virtual_clock.h"

namespace m47::shell {

/// An empty screen that tells when it comes to the front.
class TellingScreen : public Screen {
  public:
    explicit TellingScreen(std::function<void()> activated) : activated_(std::move(activated)) {}
    void Form_Load() override {}
    void Form_Activate() override { activated_(); }

  private:
    std::function<void()> activated_;
};

class ScreensTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    realtime::Realtime* open_realtime();
    band::BandSweep* open_sweep(double from, double to, const char* step);
    void sweep(band::BandSweep* screen);
    MeterInProcess& start_with_meter(const std::optional<DishInProcess>& dish = {});
    MeterInProcess& start_under_the_orbit();
    void in_the_dialog(const std::function<void(QDialog*)>& act,
                       const std::vector<BoxAnswers::Answer>& others = {});
    void click_in_the_wait(const QWidget* control);
    QByteArray sight();
    bool seen_of(const std::function<void()>& press);
    QStringList silent_keys();
    QStringList find_the_peak(QMessageBox::StandardButton answer);
    void leave_the_peak(QDialog* dialog);

    std::unique_ptr<SatelliteTables> satellites_;
    std::unique_ptr<MeterInProcess> meter_;
    FakePort* line_ = nullptr;
    BoxAnswers* pressed_boxes_ = nullptr;
    QString peak_state_;      ///< what the dialog of the peak said in the end
    QStringList peak_boxes_;  ///< the boxes around it
    QStringList seen_boxes_;  ///< "Identify satellite" and the boxes that it opened

  private Q_SLOTS:
    void init();
    void cleanup();

    void main_window_is_as_technicians_know_it();

    void the_entries_of_the_main_window_follow_the_language();

    void a_pass_that_was_cut_short_is_told_in_the_language();

    void a_screen_shows_what_its_rules_have_measured();

    void it_starts_in_italian_and_the_menu_changes_only_what_comes_after();

    void every_tooltip_stands_in_both_languages();

    void a_screen_brought_up_in_a_wait_comes_to_the_front_afterwards();

    void every_screen_of_the_table_opens_by_its_shortcut_and_is_left_by_exit();

    void a_screen_opens_once();

    void a_maximised_screen_stays_so_when_brought_up_again();

    void no_menu_hides_a_toolbar();

    void a_new_screen_lies_inside_the_window();

    void screens_open_as_tabs_that_fill_the_window();

    void the_window_menu_makes_windows_of_tabs_and_names_the_open_screens();

    void arranging_the_screens_brings_none_to_the_front();

    void the_words_of_the_toolkit_are_in_the_language_too();

    void the_about_box_says_what_runs_here_and_copies_it();

    void port_list_is_empty_until_a_choice_and_has_ten_numbers();

    void a_device_that_is_plugged_in_while_the_list_is_open_shows();

    void the_name_of_a_device_is_no_mark_up();

    void a_port_that_does_not_exist_turns_red_and_says_why();

    void realtime_opens_in_the_analog_presentation();

    void qpsk_and_analogico_change_the_frames();

    void coming_back_to_the_screen_shows_the_analog_frame();

    void limit_boxes_swallow_what_they_do_not_accept();

    void enter_corrects_a_box_without_a_link_too();

    void the_lnb_list_swallows_keys_and_the_wheel();

    void a_measurement_without_a_link_writes_no_row();

    void complete_noise_shows_its_boxes();

    void alarms_stand_level_with_their_measures();

    void nothing_moves_between_the_presentations();

    void the_keys_behind_those_of_a_plan_stay_where_they_are();

    void the_keys_of_what_is_in_force_are_checked();

    void keys_that_do_nothing_yet_are_faint();

    void from_1280_pixels_on_the_page_stands_beside_the_controls();

    void the_tuning_is_in_sight_at_every_usual_size();

    void levels_stand_beside_the_unit_they_were_measured_in();

    void what_the_program_before_measured_is_dimmed();

    void verdicts_on_the_page_have_the_colours_of_the_report();

    void corrected_behaviour_has_an_entry_for_each_choice();

    void each_entry_is_one_choice_and_all_of_them_is_every_one();

    void the_entries_of_the_screens_are_the_same_choices();

    void what_a_default_costs_is_told_once_in_the_status_line();

    void why_nothing_was_done_goes_with_the_next_deed();

    void what_is_done_follows_the_language();

    void a_digital_run_keeps_its_mode_where_chosen();

    void noise_boxes_start_from_the_frequency_when_the_choice_was_made_before();

    void a_new_log_does_not_carry_the_failure_of_the_old_one();

    void the_log_is_opened_reloaded_and_closed_with_the_save_key();

    void a_cancelled_dialog_leaves_the_tooltip_at_close_file();

    void a_database_that_is_held_is_told_in_the_language_of_the_user();

    void a_click_during_a_download_deletes_nothing();

    void clear_all_in_a_download_is_not_sent_behind_it();

    void stop_in_a_download_says_when_it_stops();
    void stop_while_a_copy_is_read_erases_nothing();

    void stop_ends_the_identification_and_says_how_far_it_came();

    void stop_ends_a_timed_run_with_the_measurement_in_it();

    void the_large_level_opens_in_the_middle_of_an_exchange();
    void what_closes_later_is_told_until_it_closes();

    void nothing_moves_before_the_answer_is_yes();

    void the_peak_is_searched_and_all_is_as_before();

    void the_turning_dish_is_stopped_at_once_data();
    void the_turning_dish_is_stopped_at_once();

    void a_position_is_stored_only_when_the_user_says_so();

    void no_dish_is_turned_without_a_meter_or_in_a_run();

    void the_start_page_connects_the_meter_by_its_device();

    void the_first_value_takes_four_clicks();
    void a_pass_over_95_imported_programs_begins_after_ten_clicks();

    void the_start_page_says_what_a_silent_meter_wants();

    void a_link_lost_over_a_refusal_says_so();
    void a_port_that_another_process_has_open_is_told_as_that();

    void the_simulated_meter_says_that_it_is_none();

    void a_simulated_meter_that_does_not_start_is_told();

    void a_recording_is_opened_and_says_that_it_is_one();

    void a_recording_that_cannot_be_used_is_told();

    void the_port_screen_offers_the_simulated_meter_where_no_port_is();

    void a_plan_of_the_start_page_opens_at_its_place();

    void without_a_database_one_is_made_here_with_an_example();

    void keys_that_can_do_nothing_say_why();

    void no_key_is_silent_without_a_meter();

    void no_key_is_silent_without_a_plan();

    void no_key_is_silent_with_a_meter();

    void an_empty_slot_and_an_empty_logger_say_so();

    void every_shortcut_of_a_key_stands_in_its_tooltip();

    void the_words_under_the_keys_can_be_taken_away();

    void the_keys_of_the_screens_have_words_as_the_main_ones();

    void the_list_of_ports_tells_what_stands_behind_each_number();

    void the_line_is_recorded_until_the_entry_is_chosen_again();

    void a_recording_that_ends_early_is_told_and_measuring_goes_on();

    void a_problem_is_reported_in_one_file_that_is_shown_before();

    void the_plans_come_with_a_report_when_they_are_ticked();

    void of_a_long_recording_the_report_has_the_end();

    void a_report_that_cannot_be_written_is_told_and_leaves_nothing();

    void a_sweep_asks_what_it_needs_and_esc_stops_it();

    void a_sweep_ends_with_the_window_and_old_words_go();
    void a_sweep_outlives_its_tab();
    void what_a_stopped_sweep_found_can_be_saved();

    void a_sweep_finds_carriers_and_a_click_tunes_to_one();

    void four_states_of_the_lnb_are_swept_in_a_row();
    void the_axis_goes_over_all_of_the_last_pass();
    void a_sweep_is_saved_under_the_name_that_is_proposed();

    void the_chart_is_used_while_it_grows();

    void a_reference_is_kept_loaded_and_held_against();

    void markers_are_set_by_clicks_and_moved_by_keys();
    void a_marker_reads_the_last_pass();
    void repeat_is_chosen_while_it_sweeps();
    void the_span_goes_along_to_the_other_axis();

    void carriers_become_programs_by_the_preview_of_an_import();

    void every_fault_of_the_line_ends_a_sweep_with_one_sentence();

    void what_cannot_be_swept_is_told();

    void a_satellite_is_identified_while_its_bar_grows();

    void beside_no_satellite_stands_no_drift();
    void ten_satellites_have_a_bar_and_what_is_none();

    void it_is_asked_again_and_the_choice_is_kept();
    void what_was_told_of_a_stopped_one_ends_with_the_next();

    void transponders_of_the_satellite_become_programs();

    void asking_stops_at_once_data();
    void asking_stops_at_once();

    void a_link_that_is_lost_while_asking_leaves_what_came();

    void what_was_asked_is_saved_as_a_table();

    void what_cannot_be_asked_is_told();

    void a_run_that_measures_is_not_disturbed_by_asking();

    void the_key_is_not_taken_while_the_meter_is_waited_for();

    void the_peak_of_the_named_satellite_is_searched_with_a_motor();

    void a_fault_in_a_handler_shows_one_box_and_the_program_goes_on();
};

}  // namespace m47::shell
