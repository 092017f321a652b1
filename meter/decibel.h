// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

namespace meter {

/// The power ratio of a level in dB.
inline double linear(double level_db) {
    return std::pow(10.0, level_db / 10.0);
}

/// The level in dB of a power ratio above 0.
inline double decibel(double ratio) {
    return 10.0 * std::log10(ratio);
}

}  // namespace meter
