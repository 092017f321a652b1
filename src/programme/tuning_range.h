// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace m47::programme {

/// The frequencies in MHz that the meter can tune, both ends included.
struct TuningRange {
    double minimum;
    double maximum;
};

/// The receiver covers the satellite intermediate band, 920 to 2150 MHz. Tuned directly (no local
/// oscillator) that is the range itself. An oscillator of 7000 MHz or more lies below the received
/// band, one below 7000 MHz above it. `oscillator` in MHz, ignored when `direct`.
TuningRange tuning_range(bool direct, double oscillator);

/// `frequency` brought into `range`; a value of exactly 0 that the range allows becomes its upper
/// end, since 0 means that nothing was entered.
double inside_range(double frequency, const TuningRange& range);

/// The supplies of an LNB in volts, 0 without, in the order in which they are chosen.
inline constexpr std::array kSupplyVolts{0, 13, 15, 18, 24};

/// The QPSK symbol rates that the meter can be set to, in kS/s.
inline constexpr double kSymbolRateMinimum = 1500;
inline constexpr double kSymbolRateMaximum = 45000;

/// The channel bandwidths that it can be set to, in MHz.
inline constexpr double kBandwidthMinimum = 5;
inline constexpr double kBandwidthMaximum = 36;

}  // namespace m47::programme
