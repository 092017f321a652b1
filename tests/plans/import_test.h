// SPDX-License-Identifier: GPL-3.0-or-later
// Plan files and scan tables, and what an import of them will do.
#pragma once

#include <QTest>
#include <vector>

#include "oscillators.h"
#include "plan_import.h"

namespace m47::plans {

class ImportTest : public QObject {
    Q_OBJECT

  private:
    const programme::Oscillators ku_{QStringLiteral("9750"), QStringLiteral("10600"), QString(),
                                     QString()};

    static programme::ProgramRecord full_program();
    static QStringList one_line_each(const ImportPreview& preview);
    static std::vector<ImportCandidate> parsed(const QByteArray& bytes);
    ImportPreview into_empty_plan(const QByteArray& bytes) const;
    /// Numbers 7 and 8, each with a logger line.
    static std::vector<programme::ProgramRecord> two_programs();
    QByteArray exported(const std::vector<programme::ProgramRecord>& plan) const;
    ImportPreview replacing(const QByteArray& file,
                            const std::vector<programme::ProgramRecord>& plan) const;

  private Q_SLOTS:
    void a_plan_file_names_every_field();
    void a_plan_comes_back_as_it_was_data();
    void a_plan_comes_back_as_it_was();
    void an_export_comes_back_to_the_byte_data();
    void an_export_comes_back_to_the_byte();
    void a_row_added_to_an_export_has_the_usual_values();
    void a_decimal_comma_of_the_user_goes_out_as_a_full_stop();
    void semicolons_and_decimal_commas_are_understood();
    void a_file_may_begin_with_a_byte_order_mark();
    void gaps_are_filled_in_the_unit_in_force();
    void a_cell_in_quotes_may_hold_anything();
    void what_is_out_of_range_is_corrected_and_named();
    void words_for_yes_and_no_are_understood();
    void a_row_that_cannot_be_meant_so_is_left_out_data();
    void a_row_that_cannot_be_meant_so_is_left_out();
    void a_number_that_the_file_names_is_left_to_its_program();
    void clashes_are_left_out_and_named();
    void an_oscillator_takes_the_place_it_is_meant_for_where_that_is_free();
    void an_oscillator_takes_a_free_place();
    void a_later_line_may_bring_the_oscillator();
    void an_entry_that_is_not_there_is_the_first_one();
    void an_exported_plan_is_in_the_plan_already();
    void what_was_edited_replaces_the_program_of_its_number();
    void programs_may_change_their_logger_lines();
    void a_column_that_the_file_lacks_stays_as_it_is();
    void limits_that_nobody_edited_stay_in_their_unit();
    void a_program_whose_successor_does_not_fit_stays();
    void a_number_that_had_to_be_corrected_replaces_nothing();
    void what_is_not_ticked_takes_no_place();
    void a_long_file_is_previewed_at_once();
    void a_wide_plan_stops_at_a_hundred();
    void a_number_that_is_not_free_is_skipped();
    void nothing_to_add_leaves_the_empty_program();
    void what_is_no_plan_is_told();
    void lines_and_the_monitored_tick_are_given_by_choice();
    void where_the_logger_table_is_full_the_rest_come_without_a_line();
};

}  // namespace m47::plans
