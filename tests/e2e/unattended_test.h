// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <map>

#include "process_support.h"

namespace m47 {

/// Measurements that succeed: what goes over the wire and what comes out.
class UnattendedTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void analog_rows();
    void a_run_reports_its_problem();
    void frequencies();
    void antenna_options();
    void rows_for_programs();
    void level_limits_out_of_range();
    void a_picture_replaces_neither_the_database_nor_a_pipe();
    void alarms();
    void log_goes_on();
    void no_window_system_is_needed();
    void output_that_cannot_be_written();
    void a_second_start_on_the_same_port();
    void digital_row();
    void digital_row_with_all_options();
    void digital_alarm();

  private:
    void start(const QString& name, const QStringList& options);
    static void compare_recordings(const TestStand& stand);

    std::map<QString, TestStand> digital_;
};

}  // namespace m47
