// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "plan_import.h"

namespace m47::plans {

/// What a DVB scan table offers to a plan.
struct ScanTable {
    std::vector<ImportCandidate> candidates;
    int not_satellite = 0;  ///< terrestrial and cable channels, which no program of a plan can be
};

/// The transponders of a DVB scan table (one line each, "S 11778000 V 27500000", or a block of
/// entries under a heading) as digital programs: oscillator by band (9750 and 10600 MHz with the
/// 22 kHz tone in the upper one; 5150 MHz in C band), 13 V for vertical and 18 V for horizontal
/// polarisation, numbers from the first free one on. Streams of one transponder are one program.
/// What cannot be understood or tuned is marked, never skipped.
ScanTable parse_scan_table(const QString& text, double unit_offset);

}  // namespace m47::plans
