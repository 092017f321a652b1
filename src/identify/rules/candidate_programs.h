// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "candidates.h"
#include "plan_import.h"

namespace m47::identify {

/// The programs of a plan that measure the transponders of `candidate` behind `lnb`, for an import;
/// gaps are filled as for limits in the unit that lies `unit_offset` dB below dBuV. One that comes
/// down in several places is a program where it lies nearest to the middle of the meter's range.
/// Frequencies are those of the tables, whatever the LNB drifts.
std::vector<plans::ImportCandidate> candidate_programs(const Candidate& candidate, const Lnb& lnb,
                                                       double unit_offset);

}  // namespace m47::identify
