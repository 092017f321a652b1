// SPDX-License-Identifier: GPL-3.0-or-later
#include "carrier_shape.h"

#include <cmath>
#include <numbers>

namespace meter {

namespace {

/// The integral of the shape from its centre to `x`, both in units of the symbol rate.
double from_centre(double x) {
    constexpr double plateau_end = (1.0 - kRollOff) / 2.0;
    constexpr double edge_end = (1.0 + kRollOff) / 2.0;
    const double distance = std::abs(x);
    if (distance <= plateau_end) return x;
    if (distance >= edge_end) return std::copysign(0.5, x);
    const double into_edge = distance - plateau_end;
    const double phase = std::numbers::pi * into_edge / kRollOff;
    const double edge = 0.5 * (into_edge + kRollOff / std::numbers::pi * std::sin(phase));
    return std::copysign(plateau_end + edge, x);
}

}  // namespace

double shape_between(double symbol_mhz, double low_mhz, double high_mhz) {
    return symbol_mhz * (from_centre(high_mhz / symbol_mhz) - from_centre(low_mhz / symbol_mhz));
}

}  // namespace meter
