// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "options.h"
#include "program.h"

namespace m47 {

/// The exit statuses of the program.
enum ExitStatus {
    kGood = 0,
    kAlarmFailed = 1,
    kUsage = 2,
    kNoLink = 3,
    kDatabase = 4,
    kOutputLost = 5,         ///< a row is missing in the log or on stdout, or the picture is
    kOldFileUnreadable = 5,  ///< the old database to import cannot be read
    kNoDisplay = 6,          ///< windows were wanted and there is no display
    kIncomplete = 7,         ///< nothing was measured, or a pass was cut short
};

/// Measures without showing a window: connects, runs the handlers that the buttons run and prints
/// each row of the page on stdout as it comes. SIGINT, SIGTERM and SIGHUP end it after the running
/// transaction. Returns the exit status.
int run_unattended(Program& program, const Options& options);

}  // namespace m47
