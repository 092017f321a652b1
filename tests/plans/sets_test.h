// SPDX-License-Identifier: GPL-3.0-or-later
// Plans and programs in the database file: every change as a whole or not at all.
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "db_support.h"
#include "fault.h"
#include "numbers.h"
#include "plan_file.h"
#include "plan_sets.h"
#include "statement_fault.h"

namespace m47::plans {

/// Their frequencies stay within the meter's range.
constexpr int kInterleavings = 1000;

class SetsTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<db::Database> database_;
    std::unique_ptr<PlanSets> sets_;

    QStringList sql(const QString& statement);
    QStringList numbers();
    /// No statement may change the file until `off`.
    void lock_file(bool on);

    /// As another program that has the file open and waits for nobody. False where it is locked.
    bool elsewhere(const QStringList& statements);
    /// Does `change` with `statements` done by another program right before its 1st, 2nd, … call of
    /// the engine, each time in a new file with two plans of two programs; then `look`.
    void with_another_program_at_each_call(const QStringList& statements,
                                           const std::function<void()>& change,
                                           const std::function<void()>& look);
    void make_two_plans();
    /// As this program does it: the last plan stays.
    static QStringList deleting(const char* plan);

    static programme::ProgramRecord tuned(const char* number, const char* frequency = "1000");
    Clash store(programme::ProgramRecord record, bool over);
    /// Programs 001 to `count` at 1001 MHz and so on; what was changed so far is forgotten.
    void store_programs(int count);
    /// Every field of every row of the plans.
    QStringList whole_file();
    std::vector<PlanRow> all_rows();

  private Q_SLOTS:
    void init();
    void cleanup();

    void a_new_plan_has_one_empty_program();

    void an_existing_name_makes_no_second_plan();

    void the_last_plan_stays();

    void a_plan_goes_with_all_its_rows();

    void quotes_in_a_name_are_just_characters();

    void an_import_spares_what_another_program_has_stored_meanwhile();

    void what_was_seen_is_overwritten_and_nothing_else();

    void the_same_in_another_form_is_no_change();

    /// Two windows look and store in any order: what neither has seen is never overwritten, and
    /// whoever would have done so is told.
    void two_windows_in_any_order_lose_nothing();

    void the_last_plan_stays_whenever_another_program_deletes_the_rest();

    void the_last_program_stays_whenever_another_program_deletes_the_rest();

    void a_copied_program_has_its_own_number_whoever_stores_meanwhile();

    void a_plan_is_made_once_whoever_makes_it_meanwhile_data();
    void a_plan_is_made_once_whoever_makes_it_meanwhile();

    void an_import_spares_oscillators_that_another_program_has_stored_meanwhile();

    void a_new_program_takes_the_next_position();

    void behind_the_last_position_there_is_none();

    void a_number_comes_once_in_a_plan();

    void a_position_comes_once_in_a_plan_data();
    void a_position_comes_once_in_a_plan();

    void a_program_keeps_its_own_position_under_a_new_number();

    void what_is_stored_is_corrected_and_comes_back();

    void without_an_oscillator_frequency_and_oscillator_stay_empty();

    void the_last_program_stays();

    void programs_are_walked_to_both_ends();

    void a_plan_without_programs_is_tolerated();

    void without_a_plan_nothing_is_written();

    void a_plan_that_another_program_has_deleted_takes_nothing();

    void a_plan_without_its_oscillators_gets_them_when_one_is_stored();

    void plans_that_others_add_and_delete_are_seen();

    void what_others_write_into_the_plan_is_read_anew();

    void a_plan_is_one_in_whatever_letters_its_rows_name_it();

    void a_file_that_takes_nothing_keeps_everything_as_it_was();

    void a_failure_half_way_leaves_no_half_plan();

    void an_import_replaces_the_empty_program();

    void an_import_replaces_programs_where_they_stand();

    void the_code_rate_of_a_transponder_goes_along();
    void a_plan_is_copied_field_by_field();

    void a_program_is_copied_with_its_oscillator();

    void a_copied_program_keeps_what_no_box_would_take();

    void a_program_that_nobody_has_stored_is_copied_empty();

    void an_empty_program_makes_room_in_another_plan_and_not_in_its_own();

    void the_same_oscillator_again_checks_no_program();

    void an_oscillator_alone_is_stored_and_its_programs_are_read_anew();

    void a_program_is_not_copied_into_a_full_plan();

    void a_program_without_room_is_not_copied();

    void a_tick_in_many_rows_changes_nothing_else();

    void a_limit_in_many_rows_is_corrected_as_a_store_does();

    void programs_that_become_active_get_their_lines();

    void without_a_line_for_all_none_becomes_active();

    void what_another_program_changed_is_not_overwritten_by_many();

    void many_programs_are_deleted_but_one_stays();

    void copies_stand_behind_what_was_copied();

    void the_order_of_the_plan_is_changed();

    void every_deed_is_taken_back_and_made_again();

    void a_store_that_changes_nothing_is_no_deed();

    void nothing_of_another_program_is_taken_back_data();
    void nothing_of_another_program_is_taken_back();

    void the_table_follows_the_plan_row_by_row();

    void transponders_keep_their_names();
};

}  // namespace m47::plans
