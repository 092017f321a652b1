// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QObject>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace m47::publish {

/// The way of rows to an engine, on the virtual clock and with an engine of the test's own.
class PublishTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    QString path(const char* name = "a.outbox") const { return folder_->filePath(name); }

  private Q_SLOTS:
    void init() {
        // In memory where the system has such a place: a test writes thousands of rows durably.
        const bool memory = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
        folder_ = std::make_unique<QTemporaryDir>((memory ? "/dev/shm" : QDir::tempPath()) +
                                                  QStringLiteral("/m47-publish-XXXXXX"));
    }

    void a_measurement_as_a_line();
    void what_was_not_measured_is_left_out();
    void levels_are_in_dbuv_data();
    void levels_are_in_dbuv();
    void tags_are_escaped();
    void health_as_a_line();
    void addresses_data();
    void addresses();
    void secrets_are_refused_in_an_address();
    void another_precision_is_refused_in_an_address();
    void secrets();
    void limits_data();
    void limits();

    void what_was_appended_is_there_again();
    void what_a_killed_process_left_is_taken_over();
    void times_only_grow();
    void a_full_outbox_drops_its_oldest();
    void what_is_acknowledged_is_no_loss();
    void no_more_is_dropped_than_has_to();
    void one_process_has_the_outbox();
    void an_unusable_outbox_is_told_data();
    void an_unusable_outbox_is_told();
    void each_failing_statement_leaves_it_whole();

    void rows_arrive_in_order_once();
    void answers_data();
    void answers();
    void pauses_grow_and_differ();
    void retry_after_is_kept();
    void a_refused_batch_is_set_aside_and_told_once();
    void a_batch_too_long_goes_in_pieces();
    void an_engine_that_says_nothing_is_given_up();
    void what_an_engine_lost_is_sent_again();
    void a_restart_that_nobody_saw_loses_nothing();
    void what_was_stored_long_ago_is_forgotten();
    void the_clock_set_back();
    void killed_between_outbox_and_log_data();
    void killed_between_outbox_and_log();
    void a_failing_outbox_holds_rows_until_it_works();
    void what_a_full_disk_refused_is_sent_at_the_end_data();
    void what_a_full_disk_refused_is_sent_at_the_end();
    void what_a_full_disk_refused_is_handed_on();
    void a_full_disk_does_not_stop_what_is_there();
    void a_clock_that_stood_far_ahead();
    void a_clock_that_is_not_the_engines_is_told();
    void how_long_rows_wait_is_told_behind_a_clock_set_back();
    void the_end_of_a_run_tells_what_waits();
    void an_outbox_taken_away_is_told_data();
    void an_outbox_taken_away_is_told();
    void time_passes_as_long_as_asked();
};

}  // namespace m47::publish
