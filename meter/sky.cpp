// SPDX-License-Identifier: GPL-3.0-or-later
#include "sky.h"

#include <algorithm>
#include <cmath>

#include "decibel.h"
#include "lnb.h"

namespace meter {

namespace {

double normal_cdf(double x) {
    return 0.5 * std::erfc(-x / std::sqrt(2.0));
}

}  // namespace

double Spectrum::noise_density(double if_mhz) const {
    return floor_dbuv_per_mhz + tilt_db * (if_mhz - 920.0) / (2150.0 - 920.0);
}

double power_share(const Carrier& carrier, double low_mhz, double high_mhz) {
    if (carrier.digital()) {
        // A modulated digital carrier is flat over its bandwidth.
        const double low = std::max(low_mhz, carrier.if_mhz - carrier.bandwidth_mhz / 2);
        const double high = std::min(high_mhz, carrier.if_mhz + carrier.bandwidth_mhz / 2);
        return std::max(0.0, high - low) / carrier.bandwidth_mhz;
    }
    // An FM carrier keeps most of its power close to its centre.
    const double sigma = carrier.bandwidth_mhz / 8.0;
    return normal_cdf((high_mhz - carrier.if_mhz) / sigma) -
           normal_cdf((low_mhz - carrier.if_mhz) / sigma);
}

double band_power(const Spectrum& spectrum, double low_mhz, double high_mhz) {
    const double centre = (low_mhz + high_mhz) / 2;
    double sum = linear(spectrum.noise_density(centre)) * (high_mhz - low_mhz);
    for (const Carrier& carrier : spectrum.carriers)
        sum += linear(carrier.level_dbuv) * power_share(carrier, low_mhz, high_mhz);
    return decibel(sum);
}

const Carrier* strongest(const Spectrum& spectrum, double low_mhz, double high_mhz) {
    const Carrier* best = nullptr;
    double best_power = 0.0;
    for (const Carrier& carrier : spectrum.carriers) {
        const double power = linear(carrier.level_dbuv) * power_share(carrier, low_mhz, high_mhz);
        if (power > best_power) {
            best = &carrier;
            best_power = power;
        }
    }
    return best;
}

const Spectrum& received_spectrum(const Settings& settings) {
    if (is_terrestrial(settings)) return terrestrial_spectrum();
    const LnbState state = lnb_state(settings);
    return satellite_spectrum(state.high_voltage, state.tone);
}

}  // namespace meter
