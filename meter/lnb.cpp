// SPDX-License-Identifier: GPL-3.0-or-later
#include "lnb.h"

namespace meter {

namespace {

constexpr int kLowestHighVolt = 16;
constexpr double kLowestIf = 900.0;
constexpr double kHighestIf = 2200.0;
constexpr double kCrossPolarDb = -22.0;
// Half of a circular wave is in either linear polarisation, and the other way round.
constexpr double kOtherKindDb = -3.0;

}  // namespace

std::optional<Lnb> lnb_of_name(std::string_view name) {
    if (name == "universal") return Lnb{};
    if (name == "single") return Lnb{10750.0, 10750.0, false};
    if (name == "circular") return Lnb{10750.0, 10750.0, true};
    if (name == "c-band") return Lnb{5150.0, 5150.0, false};
    return std::nullopt;
}

bool is_terrestrial(const Settings& settings) {
    return settings.oscillator.number == 0 && settings.if_mhz < kLowestIf;
}

LnbState lnb_state(const Settings& settings) {
    return {settings.lnb_on && settings.lnb_volt >= kLowestHighVolt,
            settings.lnb_on && settings.tone_on};
}

std::optional<double> converted(const Lnb& lnb, bool tone, double mhz) {
    const double oscillator = tone ? lnb.tone_oscillator_mhz : lnb.oscillator_mhz;
    const double result = lnb.for_c_band() ? oscillator - mhz : mhz - oscillator;
    if (result < kLowestIf || result > kHighestIf) return std::nullopt;
    return result;
}

double polarisation_loss(const Lnb& lnb, bool high_voltage, char polarisation) {
    const bool circular = polarisation == 'L' || polarisation == 'R';
    if (circular != lnb.circular) return kOtherKindDb;
    const bool wants_high = polarisation == 'H' || polarisation == 'L';
    return wants_high == high_voltage ? 0.0 : kCrossPolarDb;
}

}  // namespace meter
