// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "trend_data.h"

namespace m47::trend {

/// The stretch of the value axis that shows the values in sight (nothing when none is) with some
/// room around them, and a limit where that does not press the values flat.
TrendRange value_axis(measurement::Quantity quantity, const std::optional<TrendRange>& values,
                      const std::optional<TrendRange>& limits);

}  // namespace m47::trend
