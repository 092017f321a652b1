// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

#include "reading.h"

namespace m47::trend {

/// The least bit error rate that a logarithmic axis shows: a count without an error lies there.
inline constexpr double kLeastBer = 1e-9;

/// Where on its axis a measured value lies: a bit error rate below kLeastBer lies at that.
inline double plotted_value(measurement::Quantity quantity, float value) {
    const auto number = static_cast<double>(value);
    return measurement::is_error_rate(quantity) ? std::max(number, kLeastBer) : number;
}

}  // namespace m47::trend
