// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "program_record.h"
#include "program_state.h"
#include "upload_commands.h"

namespace m47::plans {

// Each says once in the status line what a behaviour of the plan screen that stays as it is has
// just cost, and nothing where the corrected one was chosen or nothing was lost.

/// Level limits that nobody has typed were `before` and are stored as `after`.
void tell_changed_limits(ProgramState& program, const programme::ProgramRecord& before,
                         const programme::ProgramRecord& after);
/// `plan` was sent; `unset_diseqc`: a program of it has no DiSEqC command chosen.
void tell_sent(ProgramState& program, const UploadPlan& plan, bool unset_diseqc);
/// A new program was refused, and another one is shown in its place.
void tell_refused_new(ProgramState& program);
/// A new oscillator leaves programs behind that cannot be tuned with it.
void tell_unchecked(ProgramState& program);

}  // namespace m47::plans
