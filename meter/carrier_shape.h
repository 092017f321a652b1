// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace meter {

/// Roll-off of the pulses: a carrier is 1.35 times as wide as its symbol rate.
constexpr double kRollOff = 0.35;

/// Width (MHz, at the full density of the plateau) of what a carrier with raised-cosine edges has
/// between `low_mhz` and `high_mhz`, counted from its centre. All of it is its symbol rate in MS/s.
double shape_between(double symbol_mhz, double low_mhz, double high_mhz);

}  // namespace meter
