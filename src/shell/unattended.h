// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "database.h"
#include "meter_connection.h"
#include "options.h"

namespace m47::shell {

/// The exit statuses of the program.
enum ExitStatus {
    kGood = 0,
    kAlarmFailed = 1,
    kUsage = 2,
    kNoLink = 3,
    kDatabase = 4,
    kOutputLost = 5,         ///< a row is missing in the log or on stdout, or the picture is
    kOldFileUnreadable = 5,  ///< the file to import cannot be read
    kNoDisplay = 6,          ///< windows were wanted and there is no display
    kIncomplete = 7,         ///< nothing was measured, a pass was cut short, or programs left out
};

/// Why no meter answers on port `number`, for whoever reads what a run says.
QString no_meter_text(const MeterConnection& connection, int number);

/// Measures without a window: connects, runs the rules that the buttons run and prints each row of
/// the page on stdout as it comes. SIGINT, SIGTERM and SIGHUP end it after the running transaction.
/// A screen is made for its picture alone, which takes a QApplication. Returns the exit status.
int run_unattended(ProgramState& state, db::Database& database, MeterConnection& connection,
                   const Options& options);

}  // namespace m47::shell
