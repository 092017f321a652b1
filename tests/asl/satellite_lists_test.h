// SPDX-License-Identifier: GPL-3.0-or-later
// What moves between the satellites on the PC and the slots of the meter, byte for byte.
#pragma once

#include <QTest>
#include <memory>

#include "asl_fixture.h"

namespace m47::asl {

class SatelliteListsTest : public QObject {
    Q_OBJECT

  private:
    static inline const QString kQuery = QStringLiteral("ASLNAME?");
    static inline const QString kCopy = QStringLiteral("MASTERCOPY 6?");
    static inline const QString kMeasure = QStringLiteral("MEASURE");

    /// Two satellites that the meter does not know.
    static inline const QString kNovaData = QStringLiteral(
        "S1130000010203040506070809101112131415163A\rS113001000000000000000000000000000000000DC\r"
        "S113002000000000000000000000000000000000CC\rS10D00304E4F564120375720202080\rS9030000FC");

    std::unique_ptr<AslFixture> stand_;

    /// The records behind the header, as the PC keeps them.
    static QString data_of(const QStringList& records);
    static QStringList lines(const QString& text);

    AslFixture& f() { return *stand_; }
    SatelliteLists& lists() { return *stand_->lists; }
    void load();
    /// An answer to a command instead of the meter's own.
    /// Another window on the same database.
    void elsewhere(const char* statement);

  private Q_SLOTS:
    void init() { stand_ = std::make_unique<AslFixture>(); }

    void loading_asks_for_names_and_copy();
    void without_a_link_the_meters_list_is_empty();
    void nothing_happens_without_a_selection();
    void an_entry_of_asterisks_is_no_satellite();
    void a_slot_is_copied_to_the_pc();
    void a_satellite_that_exists_is_asked_for();
    void what_another_program_has_stored_is_shown_before_it_is_overwritten();
    void what_is_stored_while_the_user_is_asked_is_asked_about_as_well();
    void a_satellite_that_another_program_has_stored_is_not_deleted_unasked();
    void a_copy_that_is_not_whole_stores_nothing_data();
    void a_copy_that_is_not_whole_stores_nothing();
    void a_satellite_goes_into_the_first_empty_slot();
    void a_satellite_that_the_meter_knows_is_reprogrammed();
    void a_satellite_that_would_arrive_as_another_is_not_sent();
    void slots_from_ten_on_take_two_digits();
    void a_full_meter_takes_nothing();
    void satellites_of_one_name_are_told_apart();
    void deleting_on_the_pc_leaves_the_last();
    void a_slot_is_filed_and_asked_for_where_that_is_chosen();
    void a_slot_that_holds_another_satellite_by_now_is_not_deleted();
    void a_slot_is_emptied_without_a_question();
    void the_meter_learns();
    void a_cancelled_question_learns_nothing();
    void names_that_are_refused_data();
    void names_that_are_refused();
    void a_lost_link_ends_it_without_a_message();
    void quotation_marks_in_a_name();
    void a_spoilt_copy_is_never_stored_in_part();
};

}  // namespace m47::asl
