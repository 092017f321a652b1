// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "plan_import.h"

namespace m47::plans {

/// Programs of a plan by their number.
using NumberedPrograms = std::map<int, programme::ProgramRecord>;

/// The number, 0 to 99, that stands in `record`; nothing where it is another one or none.
std::optional<int> number_of(const programme::ProgramRecord& record);

/// Those of `programs` whose number a wanted candidate names.
NumberedPrograms named_programs(const std::vector<programme::ProgramRecord>& programs,
                                const std::vector<ImportCandidate>& candidates);

/// What the candidate's file has no column for stays as it is in `program`, which it replaces.
void keep_other_columns(programme::ProgramRecord& record, const ImportCandidate& candidate,
                        const programme::ProgramRecord& program);

/// What the candidate says as `program` has it, unset fields too, stays as it is stored, whatever a
/// check made of it in `record`; the frequency only where `same_tuning`, and never the oscillator's
/// entry.
void keep_unedited(programme::ProgramRecord& record, const ImportCandidate& candidate,
                   const programme::ProgramRecord& program, bool same_tuning);

}  // namespace m47::plans
