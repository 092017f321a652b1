// SPDX-License-Identifier: GPL-3.0-or-later
#include "lnb.h"

namespace m47::identify {
namespace {

/// An oscillator from here on lies below its band, a lower one above it.
constexpr double kLowestBelowItsBand = 7000;

}  // namespace

LnbState Lnb::state(int index) const {
    const bool tone = index >= kStates / 2;
    return {tone ? upper_oscillator.value_or(oscillator) : oscillator, index % 2 != 0, tone};
}

bool Lnb::passes(char polarisation, bool high_voltage) const {
    switch (polarisation) {
        case 'V':
            return circular || !high_voltage;
        case 'H':
            return circular || high_voltage;
        case 'R':
            return !circular || !high_voltage;
        case 'L':
            return !circular || high_voltage;
        default:
            return false;
    }
}

std::vector<Place> Lnb::places(double sky_mhz, char polarisation) const {
    std::vector<Place> places;
    for (int index = 0; index < states(); ++index) {
        if (!passes(polarisation, index % 2 != 0)) continue;
        const double mhz = state(index).oscillator;
        const double if_mhz = mhz >= kLowestBelowItsBand ? sky_mhz - mhz : mhz - sky_mhz;
        if (if_mhz >= kLowestIf && if_mhz <= kHighestIf) places.push_back({index, if_mhz});
    }
    return places;
}

double Lnb::sky_mhz(int state_index, double if_mhz) const {
    const double mhz = state(state_index).oscillator;
    return mhz >= kLowestBelowItsBand ? mhz + if_mhz : mhz - if_mhz;
}

}  // namespace m47::identify
