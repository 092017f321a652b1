// SPDX-License-Identifier: GPL-3.0-or-later
#include "settings.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "text.h"

namespace meter {

namespace {

constexpr double kIfLow = 920.0;
constexpr double kIfHigh = 2150.0;
constexpr double kTerrestrialLow = 45.0;
constexpr double kTerrestrialHigh = 862.0;
// A converter with an oscillator below this (C band) works with the oscillator above the band.
constexpr int kOscillatorBelowBand = 7000;

bool within(double value, double low, double high) {
    return value >= low && value <= high;
}

}  // namespace

double Settings::to_shown(double if_frequency) const {
    if (oscillator.number == 0) return if_frequency;
    return oscillator.mhz < kOscillatorBelowBand ? oscillator.mhz - if_frequency
                                                 : oscillator.mhz + if_frequency;
}

double Settings::shown_mhz() const {
    return to_shown(if_mhz);
}

std::optional<double> Settings::to_if(double mhz) const {
    if (oscillator.number == 0) {
        const bool tunable =
            within(mhz, kIfLow, kIfHigh) || within(mhz, kTerrestrialLow, kTerrestrialHigh);
        return tunable ? std::optional(mhz) : std::nullopt;
    }
    const double result =
        oscillator.mhz < kOscillatorBelowBand ? oscillator.mhz - mhz : mhz - oscillator.mhz;
    if (within(result, kIfLow, kIfHigh)) return result;
    // A frequency of the intermediate band itself is taken as one, oscillator or not.
    return within(mhz, kIfLow, kIfHigh) ? std::optional(mhz) : std::nullopt;
}

std::string frequency_text(double mhz) {
    const double rounded = std::round(mhz * 10.0) / 10.0;
    char buffer[32];
    const bool whole = !within(rounded, 900.0, 2150.0) && rounded == std::floor(rounded);
    std::snprintf(buffer, sizeof buffer, whole ? "%05.0f" : "%06.1f", rounded);
    return buffer;
}

double unit_offset(int unit) {
    constexpr std::array offsets{0.0, 60.0, 109.0};
    return offsets.at(static_cast<std::size_t>(unit));
}

std::string unit_name(int unit) {
    constexpr std::array names{"dBuV", "dBmV", "dBm"};
    return names.at(static_cast<std::size_t>(unit));
}

std::string describe(const Settings& s) {
    std::string text = "freq " + frequency_text(s.shown_mhz()) + " if " + fixed(s.if_mhz, 1);
    text += " osc " + std::to_string(s.oscillator.number) + s.oscillator.bank + " " +
            zero_filled(s.oscillator.mhz, 5);
    text += std::string(" lnb ") + (s.lnb_on ? "on" : "off") + " volt " +
            std::to_string(s.lnb_volt) + " tone " + (s.tone_on ? "on" : "off");
    text += std::string(" mode ") + (s.digital ? "qpsk" : "analog") + " symbolrate " +
            zero_filled(s.symbol_rate, 5) + " chbw " + zero_filled(s.channel_bandwidth, 2);
    text += " diseqc " + zero_filled(s.diseqc, 2) + " unit " + unit_name(s.unit) + " atten " +
            std::to_string(s.attenuator);
    return text;
}

}  // namespace meter
