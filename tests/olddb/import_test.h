// SPDX-License-Identifier: GPL-3.0-or-later
// What comes from an old database, in which form, and how it meets what is there already.
#pragma once

#include <QTest>

#include "import_plan.h"
#include "import_values.h"

namespace m47::olddb {

class ImportTest : public QObject {
    Q_OBJECT

    static OldTable plans(const QStringList& names);
    static OldTable table(const QString& name, const QStringList& fields,
                          const QList<QVariantList>& rows);
    /// Each table as it would be without rows.
    static OldDatabase old_database(const QList<OldTable>& tables);

    static QStringList names_of(const ImportPlan& plan);
    static QString said(const ImportPlan& plan);

    /// One plan "A" of one program.
    static OldDatabase one_plan(const QString& frequency = QStringLiteral("1200"));

    static ImportedValue value(const char* table, const char* name, const QVariant& old);

  private Q_SLOTS:
    void plan_names_take_their_form_data();
    void plan_names_take_their_form();
    void a_corrected_name_is_reported_and_its_rows_follow();
    void long_names_that_begin_alike_stay_two_plans();
    void free_names_stay_within_ten_characters();
    void texts_come_through_as_they_stand_data();
    void texts_come_through_as_they_stand();
    void unset_fields_stay_unset();
    void values_take_their_form_data();
    void values_take_their_form();
    void what_is_changed_and_what_is_doubtful_is_reported();
    void rows_that_belong_nowhere();
    void what_stands_twice_is_told_once();
    void plans_without_a_list_are_no_correction();
    void satellites_take_their_form();
    void an_import_that_is_told_to_end_says_so_between_two_plans();
    void the_report_line_by_line();
    void missing_and_unknown_tables_and_fields_are_reported();
    void a_satellite_that_differs_in_letter_case_is_another_one();
    void everything_arrives_in_the_database();
    void clashes_are_kept_replaced_or_renamed_data();
    void clashes_are_kept_replaced_or_renamed();
    void a_plan_clashes_in_whatever_letters_its_name_stands_there();
    void a_new_name_is_none_that_is_still_to_come();
    void a_plan_that_cannot_be_written_whole_is_not_written_at_all();
    void a_replaced_plan_that_fails_stays_as_it_was();
    void a_transaction_is_kept_only_by_its_commit();
    void names_with_percent_signs_do_not_mix_up_the_report();
    void the_report_speaks_both_languages();
};

}  // namespace m47::olddb
