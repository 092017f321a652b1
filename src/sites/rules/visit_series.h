// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "site_records.h"

namespace m47::sites {

/// Of `rows`, those of one program over visits in the order of time, the last one of each visit: as
/// the installation was left. Levels are in the unit of the last row that has one; what has none is
/// left out then, and so are visits in which the program was another transponder than in the last.
std::vector<VisitMeasurement> visit_series(const std::vector<VisitMeasurement>& rows);

}  // namespace m47::sites
