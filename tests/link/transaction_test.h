// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTest>
#include <memory>

#include "answer_before.h"
#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "link.h"
#include "virtual_clock.h"
#include "work.h"

namespace m47::link {

/// The tick of the virtual clock's time of day, 10:00.
constexpr double kTick = 1 / 256.0;

/// One transaction after the other with a meter that the test scripts.
class TransactionTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void without_a_link_nothing_is_sent();
    void suspended_commands_are_not_sent();
    void a_query();
    void a_setting();
    void a_refused_argument_is_zero();
    void the_error_rate_keeps_one_character_more();
    void text_is_latin_1();
    void one_tick_behind_each_character();
    void the_answer_is_split_at_any_byte_data();
    void the_answer_is_split_at_any_byte();
    void byte_by_byte();
    void an_error_is_repeated_data();
    void an_error_is_repeated();
    void what_must_not_be_done_twice_goes_out_once_data();
    void what_must_not_be_done_twice_goes_out_once();
    void limits_data();
    void limits();
    void the_limit_counts_from_before_sending();
    void an_answer_seen_behind_the_limit_is_late();
    void a_sleeping_meter_is_woken();
    void an_echo_just_in_time_needs_no_waking();
    void a_late_answer_is_dropped_with_its_exchange_data();
    void a_late_answer_is_dropped_with_its_exchange();
    void a_late_answer_is_known_by_its_echo();
    void the_same_question_waits_for_the_late_answer();
    void a_wait_for_a_late_answer_can_be_interrupted();
    void an_answer_to_something_else_is_doubtful_data();
    void an_answer_to_something_else_is_doubtful();
    void old_input_is_dropped();
    void a_silent_meter_loses_the_link();
    void progress_steps_and_wraps();
    void the_bytes_that_have_arrived_are_told();
    void the_hourglass_stands_meanwhile();
    void windows_are_pumped_while_waiting();
    void a_wait_ends_on_the_first_reading_beyond_it();
    void waiting_for_a_tick();
    void an_interruption_ends_waits_and_the_next_transaction();
    void a_transaction_that_has_begun_goes_on();
    void what_is_undivided_is_sent_to_its_end();
    void a_transaction_is_cut_off_when_told_again();
    void work_that_is_broken_off_says_how_far_it_came();
    void work_that_is_stopped_ends_before_its_next_command();
    void a_stop_waits_for_what_is_undivided();
    void the_time_left_follows_from_what_is_done();
    void a_run_is_stopped_in_its_pauses();
    void each_wait_and_transaction_is_one_span();
    void midnight_within_a_transaction();
    void midnight_within_a_wait();
    void send_tells_whether_there_is_an_answer();
    void no_transaction_starts_inside_another();
    void a_recording_tells_what_happened_as_the_page_about_it();
    void a_recording_has_every_byte_in_printable_form();
    void a_recording_says_how_it_began_and_ended();
    void an_event_of_a_recording_is_one_line();
    void a_port_that_does_not_open_is_recorded_with_its_reason();
    void a_recording_that_fails_stops_nothing_data();
    void a_recording_that_fails_stops_nothing();
    void a_recording_in_a_file_is_there_line_by_line();

  private:
    void make(double time_of_day = 36000.0);
    void run(const QString& command);
    void answer_with(const QByteArray& value);

    std::unique_ptr<VirtualClock> clock_;
    std::unique_ptr<FakePort> port_;
    std::unique_ptr<FakeLinkView> view_;
    std::unique_ptr<Link> link_;
    std::optional<QString> last_;
};

}  // namespace m47::link
