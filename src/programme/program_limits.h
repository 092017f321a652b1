// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::programme {

/// Programs are numbered from 0 to this, in a plan as in the meter.
inline constexpr int kHighestProgram = 99;

/// The last line of the meter's logger table.
inline constexpr int kLastLoggerLine = 41;

/// How many entries the LNB supply has (off, 13 V, 18 V) and the 22 kHz tone (off, on).
inline constexpr int kSupplyChoices = 3;
inline constexpr int kToneChoices = 2;

/// The levels that a limit can have, both ends included.
struct LevelRange {
    double minimum;
    double maximum;
};

/// 20 to 120 dBuV, seen in the unit that lies `offset` dB (0, 60 or 109) below dBuV.
constexpr LevelRange level_range(double offset) {
    return {20 - offset, 120 - offset};
}

}  // namespace m47::programme
