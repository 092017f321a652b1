// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

namespace m47::identify {

/// The meter's tuner, MHz.
inline constexpr double kLowestIf = 920;
inline constexpr double kHighestIf = 2150;

/// 13 V and 18 V, each without and with the 22 kHz tone.
inline constexpr int kStates = 4;

/// What the LNB is told: which polarisation and which band it sends down.
struct LnbState {
    double oscillator = 0;  ///< MHz
    bool high_voltage = false;
    bool tone = false;
};

/// Where a carrier is found behind the LNB.
struct Place {
    int state = 0;  ///< 0 to 3: 13 V, 18 V, then both with tone
    double if_mhz = 0;
};

/// The LNB at hand: what it can receive, and where that lies behind it.
struct Lnb {
    double oscillator = 9750;                        ///< MHz, without tone
    std::optional<double> upper_oscillator = 10600;  ///< MHz, with tone; nothing: one band alone
    bool circular = false;                           ///< right at 13 V and left at 18 V

    static Lnb universal() { return {}; }
    /// One oscillator, 3070 to 12000 MHz: 5150 is C band.
    static Lnb single(double mhz) { return {.oscillator = mhz, .upper_oscillator = std::nullopt}; }

    int states() const { return upper_oscillator ? kStates : kStates / 2; }
    LnbState state(int index) const;
    /// Half of the power of a circular carrier passes either way of a linear LNB, and of a linear
    /// one either way of a circular LNB. `polarisation` is 'H', 'V', 'L' or 'R'.
    bool passes(char polarisation, bool high_voltage) const;
    /// True where it keeps this polarisation apart from its opposite.
    bool separates(char polarisation) const {
        return circular == (polarisation == 'L' || polarisation == 'R');
    }
    /// Where a carrier comes down: nowhere for one that it cannot receive, in several places where
    /// both voltages pass it or its bands overlap in the meter's range.
    std::vector<Place> places(double sky_mhz, char polarisation) const;
    /// The frequency in the sky that comes down at `if_mhz`.
    double sky_mhz(int state, double if_mhz) const;
};

}  // namespace m47::identify
