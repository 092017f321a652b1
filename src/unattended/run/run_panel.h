// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run_state.h"

namespace m47::unattended {

/// The panel as a technician would set it up for either kind of run.
void set_up(Run& run);

/// A level limit is in the unit that the meter is set to, which is known only now. The screen would
/// move one that the meter cannot measure without a word. False, with a complaint, where one does
/// not fit.
bool level_limits_fit(Run& run);

/// In the order of a plan's program, by what the boxes of the screen do. What is not given stays.
void set_antenna(realtime::RealtimeRules& rules, const AntennaOptions& antenna);

/// Tells of each number that the meter takes with fewer digits than the command line has.
void tell_rounded(const Options& options);

}  // namespace m47::unattended
