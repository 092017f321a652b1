// SPDX-License-Identifier: GPL-3.0-or-later
#include "noise_floor.h"

#include <algorithm>
#include <cmath>

#include "lnb.h"

namespace m47::identify {
namespace {

constexpr double kMostTilt = -10;
constexpr double kLeastTilt = 2;
constexpr double kTiltStep = 0.5;
constexpr double kHeightStep = 0.1;
constexpr double kHighest = 4;  // dB above the lowest level
/// The meter's own scatter.
constexpr double kOnTheLine = 0.3;
constexpr double kBelowTheLine = 0.45;
/// A level below the line speaks against it like so many on it for it.
constexpr double kWeightBelow = 3;

double support(const NoiseFloor& floor, const std::vector<Level>& levels) {
    double sum = 0;
    for (const Level& level : levels) {
        const double above = floor.above(level);
        if (above < -kBelowTheLine)
            sum -= kWeightBelow;
        else if (std::abs(above) < kOnTheLine)
            sum += 1 - above * above;
    }
    return sum;
}

}  // namespace

double NoiseFloor::above(const Level& level) const {
    return level.db - at_start - tilt * (level.if_mhz - kLowestIf) / (kHighestIf - kLowestIf);
}

NoiseFloor noise_floor_of(const std::vector<Level>& levels) {
    NoiseFloor best;
    double most = -1e9;
    for (int k = 0; k <= std::lround((kLeastTilt - kMostTilt) / kTiltStep); ++k) {
        const double tilt = kMostTilt + k * kTiltStep;
        double lowest = 1e9;
        for (const Level& level : levels)
            lowest = std::min(lowest, NoiseFloor{0, tilt}.above(level));
        for (int up = 0; up <= std::lround((kHighest + kOnTheLine) / kHeightStep); ++up) {
            const NoiseFloor floor{lowest - kOnTheLine + up * kHeightStep, tilt};
            const double found = support(floor, levels);
            if (found <= most) continue;
            most = found;
            best = floor;
        }
    }
    return best;
}

}  // namespace m47::identify
