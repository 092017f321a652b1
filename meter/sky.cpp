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

/// What an installation does to a band.
struct Change {
    double level_db = 0.0;
    double cn_db = 0.0;
    double drift_mhz = 0.0;
    double floor_db = 0.0;
};

Change change_of(SkyKind kind, bool high_band) {
    // Less of the satellite, and as much noise as before.
    if (kind == SkyKind::off_peak) return {-5.5, -5.5, 0.0, 0.0};
    // The stage that fails amplifies its noise less as well.
    if (kind == SkyKind::failing_lnb && high_band) return {-13.0, -4.5, 2.1, -6.0};
    return {};
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

std::optional<SkyKind> sky_kind(std::string_view name) {
    if (name == "good") return SkyKind::good;
    if (name == "failing-lnb") return SkyKind::failing_lnb;
    if (name == "off-peak") return SkyKind::off_peak;
    return std::nullopt;
}

Sky::Sky(SkyKind kind, double fade_db) {
    for (std::size_t band = 0; band < kBands; ++band) {
        const bool tone = band % 2 == 1;
        const Change change = change_of(kind, tone);
        Spectrum spectrum = satellite_spectrum(band >= 2, tone);
        for (Carrier carrier : spectrum.carriers) {
            carrier.level_dbuv += change.level_db - fade_db;
            carrier.link_cn_db += change.cn_db - fade_db;
            carrier.drift_mhz += change.drift_mhz;
            carriers_[band].push_back(carrier);
        }
        spectrum.carriers = carriers_[band];
        spectrum.floor_dbuv_per_mhz += change.floor_db;
        spectra_[band] = spectrum;
    }
}

const Spectrum& Sky::received(const Settings& settings) const {
    if (is_terrestrial(settings)) return terrestrial_spectrum();
    const LnbState state = lnb_state(settings);
    return spectra_[(state.high_voltage ? 2U : 0U) + (state.tone ? 1U : 0U)];
}

}  // namespace meter
