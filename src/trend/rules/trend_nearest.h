// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "trend_series.h"

namespace m47::trend {

/// The point of the settled `series` with a value of `quantity` whose time is nearest to `time`
/// (seconds since 1970); nothing where none has one within `reach` seconds of it.
std::optional<TrendPoint> nearest_point(const TrendSeries& series, measurement::Quantity quantity,
                                        double time, double reach);

}  // namespace m47::trend
