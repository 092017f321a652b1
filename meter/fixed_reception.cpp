// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "decibel.h"
#include "qpsk_demodulator.h"
#include "reception.h"
#include "sky.h"

namespace meter {

namespace {

constexpr double kDemodulatorLossDb = 1.0;
constexpr double kLowestLockCnDb = 3.0;

/// C/N of the strongest carrier in a channel: the meter's own noise adds to that of the link.
double carrier_cn(const Spectrum& spectrum, double if_mhz, double width_mhz) {
    const double low = if_mhz - width_mhz / 2;
    const double high = if_mhz + width_mhz / 2;
    const Carrier* carrier = strongest(spectrum, low, high);
    if (carrier == nullptr) return 0.0;
    const double signal = linear(carrier->level_dbuv) * power_share(*carrier, low, high);
    const double full = linear(carrier->level_dbuv);
    const double noise = linear(spectrum.noise_density(if_mhz)) * width_mhz;
    return decibel(signal / (noise + full / linear(carrier->link_cn_db)) + 1.0e-6);
}

/// The carrier that the demodulator locks on, or null: frequency and symbol rate must fit.
const Carrier* locked_carrier(const Spectrum& spectrum, const Settings& settings) {
    const double half = demodulator_width(settings.symbol_rate) / 2;
    const Carrier* carrier = strongest(spectrum, settings.if_mhz - half, settings.if_mhz + half);
    if (carrier == nullptr || !carrier->digital()) return nullptr;
    const double rate_error = std::abs(settings.symbol_rate - carrier->symbol_rate);
    if (rate_error > carrier->symbol_rate * kRateTolerance) return nullptr;
    const double offset = std::abs(carrier->if_mhz + carrier->drift_mhz - settings.if_mhz);
    return offset <= capture_range(carrier->symbol_rate) ? carrier : nullptr;
}

double qpsk_ber(double cn_db) {
    return 0.5 * std::erfc(std::sqrt(linear(cn_db) / 2.0));
}

/// The sky of sky_table.cpp, as the installation hands it down.
class FixedReception : public Reception {
  public:
    FixedReception(SkyKind kind, double fade_db) : sky_(kind, fade_db) {}

    double band_power(const Settings& settings, double low_mhz, double high_mhz) const override {
        return meter::band_power(sky_.received(settings), low_mhz, high_mhz);
    }

    double channel_cn(const Settings& settings, double width_mhz) const override {
        return carrier_cn(sky_.received(settings), settings.if_mhz, width_mhz);
    }

    QpskQuality qpsk(const Settings& settings, double cn_error_db) const override;

  private:
    Sky sky_;
};

QpskQuality FixedReception::qpsk(const Settings& settings, double cn_error_db) const {
    const Spectrum& spectrum = sky_.received(settings);
    const Carrier* carrier = locked_carrier(spectrum, settings);
    const double channel =
        carrier_cn(spectrum, settings.if_mhz, demodulator_width(settings.symbol_rate)) +
        cn_error_db;
    if (carrier == nullptr || channel < kLowestLockCnDb) return {};
    const double offset = carrier->if_mhz + carrier->drift_mhz - settings.if_mhz;
    const double capture = capture_range(carrier->symbol_rate);
    const double off_centre_loss = 3.0 * (offset / capture) * (offset / capture);
    const double useful = channel - off_centre_loss;
    QpskQuality result;
    result.locked = true;
    result.channel_ber = std::clamp(qpsk_ber(useful - kDemodulatorLossDb), kBerFloor, kBerCeiling);
    result.corrected_ber =
        std::clamp(25.0 * std::pow(result.channel_ber, 2.5), kBerFloor / 10, kBerCeiling);
    result.offset_mhz = offset;
    result.mer_db = std::clamp(useful - kMerLossDb, kMerFloorDb, kMerCeilingDb);
    return result;
}

}  // namespace

const Reception& fixed_reception() {
    static const FixedReception good(SkyKind::good, 0.0);
    return good;
}

std::unique_ptr<const Reception> make_fixed_reception(SkyKind kind, double fade_db) {
    return std::make_unique<FixedReception>(kind, fade_db);
}

}  // namespace meter
