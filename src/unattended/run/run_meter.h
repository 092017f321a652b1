// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run_state.h"

namespace m47::unattended {

/// Who reads the rows has to know where those of another meter may begin.
void tell_other_device(const Run& run);

/// The work ends before its next command where the program was told `times` times to end. Each
/// command is also a sign of life.
void stop_when_told(Run& run, int times);

/// Looks for the meter: on its port at the start, afterwards behind the device where it was.
bool identify_meter(Run& run);

/// The same within a run over a plan. A signal ends the trying at once.
bool connect_again(Run& run);

}  // namespace m47::unattended
