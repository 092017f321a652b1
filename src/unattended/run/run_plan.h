// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run_state.h"

namespace m47::unattended {

/// False, with a complaint, where there is nothing to measure.
bool plan_is_there(Run& run);

/// Measures the passes over the plan that the options ask for.
void measure_plan(Run& run);

}  // namespace m47::unattended
