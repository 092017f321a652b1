// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "carriers.h"
#include "plan_import.h"
#include "sweep_table.h"

namespace m47::band {

/// A carrier with what it was found under.
struct FoundCarrier {
    Carrier carrier;
    SweepTerms terms;
};

/// The programs of a plan that measure `carriers`, for an import; gaps are filled as for limits in
/// the unit that lies `unit_offset` dB below dBuV. One that a scan table names is digital, at its
/// symbol rate; of the others nobody knows one, so their level alone is measured. Without an
/// oscillator they are tuned directly.
std::vector<plans::ImportCandidate> carrier_programs(const std::vector<FoundCarrier>& carriers,
                                                     double unit_offset);

}  // namespace m47::band
