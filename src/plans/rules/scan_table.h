// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "plan_import.h"

namespace m47::plans {

/// The transponders of a satellite scan table as digital programs: oscillator by band (9750 and
/// 10600 MHz with the 22 kHz tone in the upper one; 5150 MHz in C band), 13 V for vertical and 18 V
/// for horizontal polarisation, numbers from the first free one on. What cannot be understood or
/// tuned is marked, never skipped.
std::vector<ImportCandidate> parse_scan_table(const QString& text, double unit_offset);

}  // namespace m47::plans
