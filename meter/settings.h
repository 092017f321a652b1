// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace meter {

/// The local oscillator that the tuning refers to; number 0 is none (frequencies are IF).
struct OscillatorChoice {
    int number = 0;
    char bank = 'A';
    int mhz = 0;
};

/// Everything that a program stores: tuning, supply, demodulator, unit.
struct Settings {
    double if_mhz = 1000.0;
    OscillatorChoice oscillator;
    bool lnb_on = false;
    int lnb_volt = 13;
    bool tone_on = false;
    int symbol_rate = 27500;
    int channel_bandwidth = 36;
    bool digital = false;
    int diseqc = 73;
    int unit = 0;
    int attenuator = 6;

    /// Frequency as the user knows it: IF without an oscillator, else the sky frequency, MHz.
    double shown_mhz() const;

    /// IF of a frequency given by the user, MHz; nothing when it lies outside the tuner's range.
    std::optional<double> to_if(double mhz) const;

    /// shown_mhz of any other IF.
    double to_shown(double if_mhz) const;
};

/// Frequency text: 1000.0 within 900..2150 MHz, else 11778, or 11778.5 and 0503.2 if needed.
std::string frequency_text(double mhz);

/// dBuV minus this is the level in the unit: 0 dBuV, 1 dBmV, 2 dBm.
double unit_offset(int unit);

/// Name of the unit: dBuV, dBmV, dBm.
std::string unit_name(int unit);

/// One line with all the settings, for the state report.
std::string describe(const Settings& settings);

}  // namespace meter
