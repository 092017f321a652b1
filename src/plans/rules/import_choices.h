// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "plan_import.h"

namespace m47::plans {

/// What the user wants of the programs of a file.
struct ImportChoices {
    TakenNumbers taken = TakenNumbers::leave_out;
    bool logger_lines = false;  ///< each gets a line of the logger table and is active in it
    bool monitored = false;
};

/// `candidates` as the user wants them in a plan that holds `programs`. Lines that the file or the
/// plan names stay; where the logger table is full the rest come without.
std::vector<ImportCandidate> with_choices(std::vector<ImportCandidate> candidates,
                                          const std::vector<programme::ProgramRecord>& programs,
                                          const ImportChoices& choices);

}  // namespace m47::plans
