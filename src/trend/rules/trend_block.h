// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

#include "trend_point.h"

namespace m47::trend {

/// Where a point lies on the chart.
struct TrendSpot {
    double time = 0;
    double value = 0;
};

/// So many points of a series that follow one another, summed up: a column of pixels that holds all
/// of them need look at none.
struct TrendBlock {
    static constexpr std::ptrdiff_t kPoints = 64;

    /// Of one quantity; the first of equal values counts.
    struct Extent {
        bool measured = false;  ///< there is a value at all
        bool broken = false;    ///< a line is broken: a row without a value, or a point apart
        bool failed = false;    ///< a row with a value failed
        TrendSpot least, greatest, last;
        TrendSpot least_failed, greatest_failed;
    };

    double begin = 0;            ///< the time of the first point
    double end = 0;              ///< that of the last
    double longest_spacing = 0;  ///< seconds, between two points of it
    std::array<Extent, measurement::kQuantities.size()> extents{};
};

/// Where `point`, which was measured, lies on the chart of `quantity`.
TrendSpot trend_spot(const TrendPoint& point, measurement::Quantity quantity);

/// Sums up the kPoints points from `first` on, which are in the order of their time.
TrendBlock trend_block(const TrendPoints::const_iterator& first);

}  // namespace m47::trend
