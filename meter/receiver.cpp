// SPDX-License-Identifier: GPL-3.0-or-later
#include "receiver.h"

#include <algorithm>

#include "qpsk_demodulator.h"

namespace meter {

namespace {

constexpr double kFilterMhz = 8.0;
constexpr double kAnalogChannelMhz = 27.0;
constexpr double kLevelJitterDb = 0.2;
constexpr double kRatioJitterDb = 0.15;
constexpr double kOffsetJitterMhz = 0.02;
constexpr double kLowestDbuv = 20.0;
constexpr double kHighestDbuv = 120.0;
constexpr double kLowestCnDb = 1.0;
constexpr double kHighestCnDb = 40.0;

}  // namespace

Receiver::Receiver(Jitter& jitter, const Reception& reception)
    : jitter_(jitter), reception_(reception) {}

double Receiver::span_level(const Settings& settings, double if_mhz) const {
    return reception_.band_power(settings, if_mhz - kFilterMhz / 2, if_mhz + kFilterMhz / 2);
}

double Receiver::level(const Settings& settings) {
    return span_level(settings, settings.if_mhz) + jitter_.around_zero(kLevelJitterDb);
}

double Receiver::channel_power(const Settings& settings, double if_mhz) {
    const double half = settings.channel_bandwidth / 2.0;
    return reception_.band_power(settings, if_mhz - half, if_mhz + half) +
           jitter_.around_zero(kLevelJitterDb);
}

double Receiver::analog_cn(const Settings& settings) {
    return reception_.channel_cn(settings, kAnalogChannelMhz) + jitter_.around_zero(kRatioJitterDb);
}

double Receiver::digital_cn(const Settings& settings) {
    return reception_.channel_cn(settings, demodulator_width(settings.symbol_rate)) +
           jitter_.around_zero(kRatioJitterDb);
}

QpskQuality Receiver::qpsk(const Settings& settings) {
    const double cn_error = jitter_.around_zero(kRatioJitterDb);
    const double offset_error = jitter_.around_zero(kOffsetJitterMhz);
    QpskQuality result = reception_.qpsk(settings, cn_error);
    if (result.locked) result.offset_mhz += offset_error;
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
