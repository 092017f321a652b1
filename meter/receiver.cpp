// SPDX-License-Identifier: GPL-3.0-or-later
#include "receiver.h"

#include <algorithm>
#include <cmath>

#include "decibel.h"

namespace meter {

namespace {

constexpr double kFilterMhz = 8.0;
constexpr double kAnalogChannelMhz = 27.0;
constexpr double kRollOff = 1.2;
constexpr double kLevelJitterDb = 0.2;
constexpr double kRatioJitterDb = 0.15;
constexpr double kLowestDbuv = 20.0;
constexpr double kHighestDbuv = 120.0;
constexpr double kLowestCnDb = 1.0;
constexpr double kHighestCnDb = 40.0;

constexpr double kBerCeiling = 3.0e-2;
constexpr double kBerFloor = 1.0e-8;
constexpr double kMerFloorDb = 1.0;
constexpr double kMerCeilingDb = 30.0;
constexpr double kDemodulatorLossDb = 1.0;
constexpr double kMerLossDb = 0.3;
constexpr double kLowestLockCnDb = 3.0;
constexpr double kRateTolerance = 0.005;

/// C/N of the strongest carrier in a channel: the meter's own noise adds to that of the link.
double channel_cn(const Spectrum& spectrum, double if_mhz, double width_mhz) {
    const double low = if_mhz - width_mhz / 2;
    const double high = if_mhz + width_mhz / 2;
    const Carrier* carrier = strongest(spectrum, low, high);
    if (carrier == nullptr) return 0.0;
    const double signal = linear(carrier->level_dbuv) * power_share(*carrier, low, high);
    const double full = linear(carrier->level_dbuv);
    const double noise = linear(spectrum.noise_density(if_mhz)) * width_mhz;
    return decibel(signal / (noise + full / linear(carrier->link_cn_db)) + 1.0e-6);
}

double demodulator_width(const Settings& settings) {
    return settings.symbol_rate / 1000.0 * kRollOff;
}

/// The carrier that the demodulator locks on, or null: frequency and symbol rate must fit.
const Carrier* locked_carrier(const Spectrum& spectrum, const Settings& settings) {
    const double half = demodulator_width(settings) / 2;
    const Carrier* carrier = strongest(spectrum, settings.if_mhz - half, settings.if_mhz + half);
    if (carrier == nullptr || !carrier->digital()) return nullptr;
    const double rate_error = std::abs(settings.symbol_rate - carrier->symbol_rate);
    if (rate_error > carrier->symbol_rate * kRateTolerance) return nullptr;
    const double capture = carrier->symbol_rate / 1000.0 * 0.12;
    const double offset = std::abs(carrier->if_mhz + carrier->drift_mhz - settings.if_mhz);
    return offset <= capture ? carrier : nullptr;
}

double qpsk_ber(double cn_db) {
    return 0.5 * std::erfc(std::sqrt(linear(cn_db) / 2.0));
}

}  // namespace

Receiver::Receiver(Jitter& jitter, SkyKind kind) : jitter_(jitter), sky_(kind) {}

double Receiver::span_level(const Settings& settings, double if_mhz) const {
    const Spectrum& spectrum = sky_.received(settings);
    return band_power(spectrum, if_mhz - kFilterMhz / 2, if_mhz + kFilterMhz / 2);
}

double Receiver::level(const Settings& settings) {
    return span_level(settings, settings.if_mhz) + jitter_.around_zero(kLevelJitterDb);
}

double Receiver::channel_power(const Settings& settings, double if_mhz) {
    const double half = settings.channel_bandwidth / 2.0;
    const Spectrum& spectrum = sky_.received(settings);
    return band_power(spectrum, if_mhz - half, if_mhz + half) + jitter_.around_zero(kLevelJitterDb);
}

double Receiver::analog_cn(const Settings& settings) {
    const Spectrum& spectrum = sky_.received(settings);
    return channel_cn(spectrum, settings.if_mhz, kAnalogChannelMhz) +
           jitter_.around_zero(kRatioJitterDb);
}

double Receiver::digital_cn(const Settings& settings) {
    const Spectrum& spectrum = sky_.received(settings);
    return channel_cn(spectrum, settings.if_mhz, demodulator_width(settings)) +
           jitter_.around_zero(kRatioJitterDb);
}

QpskQuality Receiver::qpsk(const Settings& settings) {
    const Spectrum& spectrum = sky_.received(settings);
    const Carrier* carrier = locked_carrier(spectrum, settings);
    const double channel = digital_cn(settings);
    const double drift_noise = jitter_.around_zero(0.02);
    QpskQuality result{false, kBerCeiling, kBerCeiling, 0.0, kMerFloorDb};
    if (carrier == nullptr || channel < kLowestLockCnDb) return result;
    const double offset = carrier->if_mhz + carrier->drift_mhz - settings.if_mhz;
    const double capture = carrier->symbol_rate / 1000.0 * 0.12;
    const double off_centre_loss = 3.0 * (offset / capture) * (offset / capture);
    const double useful = channel - off_centre_loss;
    result.locked = true;
    result.channel_ber = std::clamp(qpsk_ber(useful - kDemodulatorLossDb), kBerFloor, kBerCeiling);
    result.corrected_ber =
        std::clamp(25.0 * std::pow(result.channel_ber, 2.5), kBerFloor / 10, kBerCeiling);
    result.offset_mhz = offset + drift_noise;
    result.mer_db = std::clamp(useful - kMerLossDb, kMerFloorDb, kMerCeilingDb);
    return result;
}

Reading level_reading(double level_dbuv, const Settings& settings) {
    const double top = std::min(kHighestDbuv, 60.0 + 10.0 * settings.attenuator);
    const double offset = unit_offset(settings.unit);
    if (level_dbuv < kLowestDbuv) return {'<', kLowestDbuv - offset};
    if (level_dbuv > top) return {'>', top - offset};
    return {' ', level_dbuv - offset};
}

Reading ratio_reading(double cn_db) {
    if (cn_db < kLowestCnDb) return {'<', kLowestCnDb};
    if (cn_db > kHighestCnDb) return {'>', kHighestCnDb};
    return {' ', cn_db};
}

}  // namespace meter
