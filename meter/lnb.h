// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string_view>

#include "settings.h"

namespace meter {

/// A converter at the dish.
struct Lnb {
    double oscillator_mhz = 9750.0;
    double tone_oscillator_mhz = 10600.0;  ///< while the 22 kHz tone is on
    bool circular = false;                 ///< 13 V right and 18 V left, else vertical, horizontal

    /// Its oscillator is above the band, which comes out the wrong way round.
    bool for_c_band() const { return oscillator_mhz < 7000.0; }
};

/// The converter of a name: universal, single (10750 MHz), circular (10750 MHz) or c-band.
std::optional<Lnb> lnb_of_name(std::string_view name);

/// What the meter's supply and tone make of the converter. With the supply off the installation is
/// fed by another receiver, which asks for 13 V without tone.
struct LnbState {
    bool high_voltage = false;
    bool tone = false;
};

/// True where the settings mean the terrestrial band, which no converter serves.
bool is_terrestrial(const Settings& settings);

LnbState lnb_state(const Settings& settings);

/// Where a sky frequency comes out of the converter, MHz; nothing where it does not.
std::optional<double> converted(const Lnb& lnb, bool tone, double mhz);

/// By how many dB less than in its own polarisation a carrier is received at a supply, at most 0.
double polarisation_loss(const Lnb& lnb, bool high_voltage, char polarisation);

}  // namespace meter
