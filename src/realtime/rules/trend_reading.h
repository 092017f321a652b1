// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>

#include "reading.h"

namespace m47 {

/// What the trend shows of a measurement, each on an axis of its own.
inline constexpr std::array kQuantities{Quantity::level, Quantity::ber, Quantity::mer};

/// The least bit error rate that a logarithmic axis shows: a count without an error lies there.
inline constexpr double kLeastBer = 1e-9;

/// Where on its axis a measured value lies: a bit error rate below kLeastBer lies at that.
inline double plotted_value(Quantity quantity, float value) {
    const auto number = static_cast<double>(value);
    return is_error_rate(quantity) ? std::max(number, kLeastBer) : number;
}

}  // namespace m47
