// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <deque>

#include "measurement.h"
#include "trend_reading.h"

namespace m47::trend {

/// One row of the page as the trend keeps it: 24 bytes.
struct TrendPoint {
    double time = 0;  ///< seconds since 1970 on the clock of the row
    std::array<float, measurement::kQuantities.size()> values{};
    std::array<measurement::RangeMark, measurement::kQuantities.size()> marks{};
    measurement::Verdict status : 7 = measurement::Verdict::none;
    /// The program was left out since its row before: no line leads here.
    bool apart : 1 = false;

    measurement::Reading reading(measurement::Quantity quantity) const {
        const auto k = static_cast<std::size_t>(quantity);
        return {values[k], marks[k]};
    }
};
static_assert(sizeof(TrendPoint) == 24);

using TrendPoints = std::deque<TrendPoint>;  // grows without copying what it holds

}  // namespace m47::trend
