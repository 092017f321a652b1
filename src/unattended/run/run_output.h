// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run_state.h"

namespace m47::unattended {

/// Before the first row: a table without rows has its columns too.
void print_names(Run& run);

/// Sees to what the rules tell while the run measures: rows, log, visit, engine, complaints.
void listen_to_rules(Run& run);

/// What cannot be recorded stops no measurement.
void record_line(Run& run);

}  // namespace m47::unattended
