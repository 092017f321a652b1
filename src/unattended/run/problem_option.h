// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "meter_connection.h"
#include "options.h"

namespace m47::unattended {

/// Writes the report of a problem where `options` ask for one; without --measure the meter is
/// looked for first, on the port that they name. Returns `status`, and kOutputLost, told on stderr,
/// where that was kGood and the report cannot be written.
int report_problem(ProgramState& state, MeterConnection& connection, const Options& options,
                   int status);

}  // namespace m47::unattended
