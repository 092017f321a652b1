// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace meter {

// What the meter's own demodulator can do, whatever sky it is under.
constexpr double kBerCeiling = 3.0e-2;
constexpr double kBerFloor = 1.0e-8;
constexpr double kMerFloorDb = 1.0;
constexpr double kMerCeilingDb = 30.0;
constexpr double kMerLossDb = 0.3;
constexpr double kRateTolerance = 0.005;

/// How far a carrier may be from the frequency tuned to, MHz.
inline double capture_range(int symbol_rate) {
    return symbol_rate / 1000.0 * 0.12;
}

/// The width of the filter in front of the demodulator, MHz.
inline double demodulator_width(int symbol_rate) {
    return symbol_rate / 1000.0 * 1.2;
}

}  // namespace meter
