// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

#include "trend_data.h"

namespace m47::trend {

/// What is drawn of one quantity of one program.
struct TrendSamples {
    /// The curve; a value that is no number breaks it.
    std::vector<TrendSpot> line;
    /// Points to be drawn as such: those that no line reaches, and all of them when they are few.
    std::vector<TrendSpot> dots;
    /// Points of rows that failed.
    std::vector<TrendSpot> failed;
    /// The points lie closer than the columns, so that the line is drawn from summed-up ones.
    bool dense = false;
    /// The least and the greatest value in sight; nothing when none is.
    std::optional<TrendRange> values;
};

/// What of `quantity` of `series` is seen in the stretch of time `shown` on `columns` (1 or more)
/// columns of pixels. Where the points lie closer than the columns only the first, the least, the
/// greatest and the last of a column are given, so that the drawing costs as much for a million
/// points as for a thousand. A line never leads over a row without a value, over a pause, or over a
/// pass that left the program out, however many points fall into a column.
TrendSamples sample_trend(const TrendSeries& series, measurement::Quantity quantity,
                          TrendRange shown, int columns);

}  // namespace m47::trend
