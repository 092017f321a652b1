// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "measurement.h"
#include "texts.h"

namespace m47::sites {

/// What a quantity is called: "Level", "MER".
QString quantity_text(measurement::Quantity quantity, const Texts& texts);

/// The limits that were in force, "Level 45–75, MER > 9.5"; empty where none was.
QString limits_text(const measurement::LimitsInForce& limits, const Texts& texts);

}  // namespace m47::sites
