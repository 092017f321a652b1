// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::unattended {

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

}  // namespace m47::unattended
