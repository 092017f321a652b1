// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tuning.h"

#include <QTest>

#include "answer_before.h"
#include "realtime_fixture.h"

namespace m47::realtime {

/// What the tuning controls send and show when the user confirms a value.
class TuningTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init() { f_ = std::make_unique<RealtimeFixture>(); }
    void cleanup() { f_.reset(); }

    void frequency_data();
    void frequency();
    void typed_decimals_in_either_form();
    void other_keys_only_edit_data();
    void other_keys_only_edit();
    void a_refused_command_keeps_the_box();
    void without_a_link_the_box_is_still_corrected();
    void no_local_oscillator();
    void local_oscillator_data();
    void local_oscillator();
    void oscillator_choice_during_a_recall_data();
    void oscillator_choice_during_a_recall();
    void oscillator_choice_that_is_not_sent_keeps_the_frequency_data();
    void oscillator_choice_that_is_not_sent_keeps_the_frequency();
    void link_lost_at_the_oscillator_keeps_the_frequency();
    void link_lost_at_the_frequency_query_leaves_its_empty_answer();
    void a_frequency_that_was_not_answered_is_kept_where_chosen_data();
    void a_frequency_that_was_not_answered_is_kept_where_chosen();
    void oscillator_frequency_data();
    void oscillator_frequency();
    void oscillator_frequency_brings_the_frequencies_along();
    void oscillator_frequency_with_direct_tuning();
    void noise_boxes_start_from_the_present_frequency();
    void lnb_data();
    void lnb();
    void five_entry_lnb_data();
    void five_entry_lnb();
    void tone_data();
    void tone();
    void lists_send_nothing_during_a_recall();
    void general_list_data();
    void general_list();
    void general_list_sends_its_entry_data();
    void general_list_sends_its_entry();
    void general_list_without_an_answer_data();
    void general_list_without_an_answer();
    void a_corrected_entry_is_shown_before_it_is_sent();
    void symbol_rate_data();
    void symbol_rate();
    void bandwidth_data();
    void bandwidth();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    Tuning& tuning() { return f_->rules.tuning; }

    std::unique_ptr<RealtimeFixture> f_;
};

}  // namespace m47::realtime
