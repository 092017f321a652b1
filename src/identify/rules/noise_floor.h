// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace m47::identify {

/// A level that was measured.
struct Level {
    int state = 0;  ///< of the LNB
    double if_mhz = 0;
    double db = 0;  ///< in any unit that stays the same
};

/// The level where nothing is received: a straight line over the band, as a cable makes it.
struct NoiseFloor {
    double at_start = 0;  ///< dB, at the lowest IF
    double tilt = 0;      ///< dB from there to the highest

    /// How far a level stands above it, dB; may be a little below 0.
    double above(const Level& level) const;
};

/// The line on which most of the low levels lie and below which next to none does.
NoiseFloor noise_floor_of(const std::vector<Level>& levels);

}  // namespace m47::identify
