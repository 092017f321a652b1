// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "meter_connection.h"
#include "options.h"
#include "texts.h"

namespace m47::unattended {

/// Brings the dish to its peak without a window, prints each reading on stdout as it comes, and
/// sets the meter back. The status to end with, as that of run_unattended; kIncomplete where the
/// dish is not on a peak. SIGINT, SIGTERM and SIGHUP stop the motor at once.
int run_peak(Texts& texts, MeterConnection& connection, const Options& options);

}  // namespace m47::unattended
