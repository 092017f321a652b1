// SPDX-License-Identifier: GPL-3.0-or-later
// The plan screen of the whole program, clicked and typed at as a technician does, and its uploads
// against the simulated meter on a pseudo-terminal.
#pragma once

#include <signal.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>

#include "fake_port.h"
#include "meter_in_process.h"
#include "plan_sets.h"
#include "plan_tooltips.h"
#include "process_support.h"
#include "program_in_folder.h"
#include "program_set.h"
#include "upload_commands.h"
#include "virtual_clock.h"

namespace m47::plans {

class PlanScreenTest : public QObject, protected ProgramInFolder {
    Q_OBJECT

  private:
    std::unique_ptr<MeterProcess> meter_;
    std::unique_ptr<MeterInProcess> quick_meter_;
    /// The line to it.
    FakePort* line_ = nullptr;
    ProgramSet* screen_ = nullptr;
    int beeps_ = 0;
    /// Every box that was answered: its title and its text.
    QStringList told_;
    /// The icon of each message box among them.
    QList<QMessageBox::Icon> icons_;

    template <class Kind>
    Kind* find(const char* name) {
        return ProgramInFolder::find<Kind>(name, screen_);
    }

    void start(const link::PortList& ports, int language);
    /// Makes the window the active one, as beneath a hand that types.
    void to_the_front(int language);
    void open_screen();
    void start_alone(int language = kEnglish);
    /// What takes a minute on a line takes an instant.
    void start_on_virtual_line();
    /// What answers takes every command, even one that no meter could carry out.
    void start_on_patient_line();
    void start_with_meter(const QStringList& options = {});
    QString state_file() const { return in_folder(QStringLiteral("state")); }

    /// Does `act`, and `answer` to the window that then stands in front.
    void answering(const std::function<void()>& act, const std::function<void(QWidget*)>& answer);
    /// The same with one answer for each window that comes after the other.
    void answering_each(const std::function<void()>& act,
                        const QList<std::function<void(QWidget*)>>& answers);
    /// Takes the file in the dialog that asks for one.
    static std::function<void(QWidget*)> choosing(const QString& path);
    /// The rows of the box that shows what another program has stored.
    static QStringList changes_in(QWidget* front);
    static void choose(QWidget* front, const char* button);
    static std::function<void(QWidget*)> noting_changes(QStringList& changes, const char* button);
    static std::function<void(QWidget*)> choosing_button(const char* button);
    static std::function<void(QWidget*)> accepting();
    QString file_with(const QString& name, const QByteArray& content);
    void change_file(const QString& statement);
    /// As another program that has the file open.
    void elsewhere(const QString& statement);
    /// Two programs, 001 at 1001 MHz and 002 at 1002 MHz, the second one shown.
    void type_two_programs();
    /// Two programs through an oscillator of 9750 MHz, the second one shown.
    void type_two_programs_of_an_oscillator();
    QLabel* progress() { return window().findChild<QLabel*>(QStringLiteral("plan_progress")); }
    void note(QWidget* front);
    static std::function<void(QWidget*)> pressing(QMessageBox::StandardButton button);
    static std::function<void(QWidget*)> typing(const QString& text);
    void press(const char* key) { find<QAction>(key)->trigger(); }
    std::function<void()> pressed(const char* key);

    QString text_of(const char* box) { return find<QLineEdit>(box)->text(); }
    void type(const char* name, const QString& text);
    void enter(const char* name, const QString& text);
    void leave(const char* name, const QString& text);
    void type_oscillator(const QString& text, bool with_enter = true);
    /// Opens the list and takes an entry with the mouse.
    void pick(const char* name, int entry);
    void click(const char* button);
    void new_plan(const QString& name) { answering(pressed("new"), typing(name)); }

    QString stored(const QString& column);

    QStringList new_commands();
    qsizetype seen_ = 0;

    QByteArray meter_report();

    /// What the meter keeps, as the lines of its report that begin with `word`.
    QStringList meter_keeps(const QString& word);

    /// Three programs of all kinds, typed in.
    void type_three_programs();
    const QStringList three_programs_{"CHBW 33",
                                      "UNIT 00",
                                      "PROGRAM 10",
                                      "LOCOSC 1 09750",
                                      "LOCOSC 1",
                                      "FREQ 11000",
                                      "MARKER 1 1",
                                      "SYMBRATEQPSK 27500",
                                      "DISEQC 73",
                                      "LNB 01",
                                      "LNVOLT 13",
                                      "TONE22K 00",
                                      "STORE",
                                      "LNB 00",
                                      "PROGRAM 11",
                                      "LOCOSC 2 10600",
                                      "LOCOSC 2",
                                      "FREQ 12000",
                                      "MARKER 1 1",
                                      "SYMBRATEQPSK 29900",
                                      "DISEQC 73",
                                      "LNB 01",
                                      "LNVOLT 18",
                                      "TONE22K 01",
                                      "STORE",
                                      "LNB 00",
                                      "TONE22K 00",
                                      "DATAPROGRAM 01 11 01",
                                      "PROGRAM 12",
                                      "LOCOSC 0",
                                      "FREQ 1234.5",
                                      "MARKER 1 0",
                                      "DISEQC 73",
                                      "LNB 00",
                                      "TONE22K 00",
                                      "STORE",
                                      "DATAPROGRAM 02 12 01"};
    const QStringList three_kept_{
        "10 freq 11000 if 1250.0 osc 1A 09750 lnb on volt 13 tone off mode qpsk symbolrate 27500 "
        "chbw 33 diseqc 73 unit dBuV atten 6",
        "11 freq 12000 if 1400.0 osc 2A 10600 lnb on volt 18 tone on mode qpsk symbolrate 29900 "
        "chbw 33 diseqc 73 unit dBuV atten 6",
        "12 freq 1234.5 if 1234.5 osc 0A 00000 lnb off volt 18 tone off mode analog symbolrate "
        "29900 chbw 33 diseqc 73 unit dBuV atten 6"};

  private Q_SLOTS:
    void init() { seen_ = 0; }
    void cleanup();

    void it_opens_as_technicians_know_it();

    void every_tooltip_stands_in_both_languages_data();
    void every_tooltip_stands_in_both_languages();

    void a_control_without_an_italian_tooltip_keeps_the_english_one();

    void an_empty_program_is_shown_empty_and_nothing_is_changed();

    void plans_are_walked_with_beeps_at_the_ends();

    void a_new_plan_is_asked_for_in_the_language();

    void plans_and_programs_are_deleted_after_a_question();

    void enter_in_the_number_adds_a_program();

    void a_number_that_exists_is_refused();

    void a_logger_position_that_is_taken_is_refused();

    void a_key_in_the_position_list_stores_and_types_nothing();

    void lists_take_their_own_entries_alone();

    void boxes_are_checked_on_enter_and_on_leaving();

    void a_menu_in_front_of_a_box_is_no_leaving();

    void the_oscillator_is_edited_stored_and_bounds_the_frequency();

    void each_oscillator_has_its_own_place();

    void without_an_oscillator_the_frequency_stays_empty();

    void storing_checks_the_limits_in_the_unit_that_is_chosen();

    void the_unit_chosen_elsewhere_shows_when_the_screen_comes_to_the_front();

    void the_exit_entry_closes_the_screen();

    void user_switches_fill_a_list();

    void a_read_only_file_is_told_once_and_nothing_is_half_written();

    void a_number_meant_for_a_new_program_renumbers_none_after_a_fault();

    void thirty_programs_are_typed_in_edited_and_uploaded_in_each_way();

    void transponders_of_a_scan_table_are_imported_and_uploaded();

    void the_rows_of_an_import_are_chosen();
    void what_is_left_out_is_told_in_one_line();

    void a_plan_of_any_name_is_proposed_as_a_file();
    void an_exported_plan_comes_back_edited();

    void a_table_without_satellites_is_told_once();

    void without_a_plan_one_message_says_so();

    void a_plan_without_programs_or_oscillators_can_still_be_filled();

    void plans_that_came_into_the_file_are_there_at_once();

    void a_store_asks_where_another_program_has_stored_meanwhile();

    void a_deletion_asks_where_another_program_has_stored_meanwhile();

    void a_plan_is_not_deleted_with_what_another_program_has_stored_in_it();

    void a_plan_that_has_become_the_last_one_stays_and_it_is_told();

    void what_is_stored_twice_alike_is_not_asked();

    void an_oscillator_that_another_program_has_stored_is_asked_about();

    void an_upload_waits_for_whoever_wants_to_go_on_typing();

    void an_upload_that_cannot_keep_the_table_ends_cleanly();

    void closing_during_an_upload_waits_for_the_comparison_to_be_read();

    void what_the_meter_holds_beside_the_plan_is_shown();

    void a_refused_store_does_not_hold_up_the_question();

    void the_unit_goes_out_with_the_plan();

    void keys_of_the_position_list();

    void a_number_of_another_program_is_refused_by_enter_and_by_store();

    void the_key_without_work_does_nothing();

    void a_read_only_file_is_told_by_everything_that_writes();

    void a_plan_is_exported_with_tabs_or_the_reason_is_told();

    void blanks_around_a_new_name_go();

    void the_tab_key_goes_through_the_boxes_in_their_order();

    void every_box_has_a_name_for_those_who_cannot_see_it();

    void a_file_is_imported_after_its_preview_and_exported();

    void programs_and_plans_are_copied();

    void no_sends_nothing_but_the_program_is_stored();

    void the_meter_holds_the_plan_after_each_kind_of_upload();

    void after_a_failed_store_the_next_one_overwrites_no_other_program();

    void a_program_deleted_elsewhere_is_not_deleted_twice();

    void a_plan_deleted_elsewhere_is_named_and_another_one_shown();

    void a_move_that_failed_leaves_plan_and_program_together();

    void an_oscillator_entry_that_does_not_exist_erases_none_data();
    void an_oscillator_entry_that_does_not_exist_erases_none();

    void what_the_box_shows_is_what_is_stored_data();
    void what_the_box_shows_is_what_is_stored();

    void a_number_with_letters_behind_is_cut_on_leaving();

    void an_oscillator_typed_with_a_comma_is_read_whole();

    void a_plan_name_is_plain_text_in_every_box();

    void a_cell_of_a_file_is_plain_text_in_the_preview();

    void limits_stay_in_their_unit_where_that_is_chosen_data();
    void limits_stay_in_their_unit_where_that_is_chosen();

    void what_the_behaviour_as_ever_costs_is_told_once();

    void imported_limits_stay_in_their_unit_where_that_is_chosen();

    void empty_programs_are_not_uploaded_where_that_is_chosen();

    void a_plan_of_empty_programs_deletes_nothing_in_the_meter();

    void replacing_says_what_goes_and_no_is_the_default();

    void replacing_keeps_the_table_first_where_that_is_chosen();

    void a_refused_new_program_stays_where_that_is_chosen();

    void a_new_oscillator_checks_every_program_where_that_is_chosen();

    void an_empty_program_stays_empty_when_all_are_checked();

    void an_unset_diseqc_command_is_none_where_that_is_chosen();

  private:
    /// What the box after an upload by `key` says, and the rows of its table.
    QString verified(const char* key, QStringList* rows = nullptr);
    /// Program 10 on the third line of the logger.
    void plan_a_line();
    /// Somebody works at the meter between an upload's last command and the comparison.
    void work_at_the_meter(const QString& command);

  private Q_SLOTS:
    void a_refused_table_is_not_as_planned();

    void a_plan_without_lines_is_not_called_verified();

    void a_line_that_the_meter_lists_as_inactive_is_as_good_as_none();

    void a_refused_upload_says_how_far_it_came();

  private:
    QTableView* table();
    QString cell(int row, int column);
    /// The cells of a column of the table, separated by blanks.
    QString column(int column);
    void click_row(int row, Qt::KeyboardModifiers keys = {});
    void tick_cell(int row, int column);
    void type_in_cell(int row, int column, const QString& text);
    QStringList selected_numbers();
    /// Programs 001 to `count` at 1001 MHz and so on.
    void type_programs(int count);
    /// In the status line.
    QString told_below();
    void paste(const QString& text);
    /// A plan of 95 programs at 1000 MHz and so on, by the import dialog.
    void import_95(bool monitored);
    /// A click that is counted.
    void click_on(QWidget* place, const QPoint& where);
    int clicks_ = 0;
    int monitored();

  private Q_SLOTS:
    void the_table_shows_the_plan_and_recalls_by_a_click();

    void the_table_is_sorted_by_a_heading();

    void a_tick_and_a_limit_hold_for_all_selected_rows();

    void what_is_typed_in_the_record_stays_over_a_tick_in_the_table();

    void rows_are_inserted_moved_and_deleted();

    void rows_go_to_a_spreadsheet_and_come_back();

    void the_program_on_the_screen_stays_behind_a_paste();
    void a_paste_that_is_refused_is_told_in_a_sentence_and_pastes_nothing();

    void what_was_stored_is_undone_and_done_again();

    void undo_in_a_box_is_of_its_text();

    void what_another_program_changed_is_not_undone();

    void edits_of_a_program_without_a_number_are_offered_back();
    void edits_are_marked_and_offered_back();

    void going_through_the_boxes_is_no_edit();

    void edits_put_back_do_not_overwrite_what_was_stored_since();

    void a_refused_new_program_is_put_back_on_request();

    void edits_are_asked_about_where_that_is_chosen();

    void lines_and_the_monitored_tick_come_with_an_import();

    void ninety_five_imported_programs_are_monitored_by_one_click_or_two();

    void the_table_is_folded_and_the_screen_stays_usable_when_small();
};

}  // namespace m47::plans
