// SPDX-License-Identifier: GPL-3.0-or-later
#include "sky_stand.h"

#include <cmath>

#include "dish_beam.h"
#include "jitter.h"
#include "orbit.h"
#include "orbit_reception.h"
#include "scan_tables.h"

namespace m47 {
namespace {

constexpr double kFilterMhz = 8;
constexpr double kLevelJitterDb = 0.2;
constexpr double kRatioJitterDb = 0.15;
constexpr double kOffsetJitterMhz = 0.02;
constexpr double kMiddleMhz = 11725;

meter::OrbitOptions options_of(const SkySettings& settings) {
    meter::OrbitOptions options;
    options.seed = settings.seed;
    if (!settings.own_powers) options.cn_db = settings.cn_db;
    options.off_air_percent = settings.off_air_percent;
    options.dish_cm = settings.dish_cm;
    options.unlisted_percent = settings.unlisted_percent;
    options.unequal_db = settings.unequal_db;
    return options;
}

meter::Settings meter_settings(bool high_voltage, bool tone, double if_mhz) {
    meter::Settings settings;
    settings.lnb_on = true;
    settings.lnb_volt = high_voltage ? 18 : 13;
    settings.tone_on = tone;
    settings.if_mhz = if_mhz;
    return settings;
}

}  // namespace

struct SkyTables::Kept {
    meter::ScanTables tables;
};

SkyTables::SkyTables(const std::string& folder)
    : kept_(new Kept{meter::ScanTables::read(folder)}) {}
SkyTables::~SkyTables() = default;

struct SkyStand::Inside {
    Inside(const SkyTables& tables, const SkySettings& settings)
        : orbit(tables.kept().tables, options_of(settings)),
          reception(orbit, {settings.oscillator, settings.tone_oscillator, settings.circular}),
          jitter(settings.seed) {
        reception.point(settings.east);
    }

    meter::Orbit orbit;
    meter::OrbitReception reception;
    meter::Jitter jitter;
};

SkyStand::SkyStand(const SkyTables& tables, const SkySettings& settings)
    : inside_(std::make_unique<Inside>(tables, settings)) {}
SkyStand::~SkyStand() = default;

double SkyStand::beam_width() const {
    return meter::beam_width(inside_->orbit.options().dish_cm, kMiddleMhz);
}

double SkyStand::drift() const {
    return inside_->orbit.drift_mhz();
}

void SkyStand::set_time(double seconds) {
    inside_->reception.set_time(seconds);
}

double SkyStand::level(bool high_voltage, bool tone, double if_mhz) {
    const double db =
        inside_->reception.band_power(meter_settings(high_voltage, tone, if_mhz),
                                      if_mhz - kFilterMhz / 2, if_mhz + kFilterMhz / 2);
    return std::round((db + inside_->jitter.around_zero(kLevelJitterDb)) * 10) / 10;
}

SkyStand::Lock SkyStand::lock(bool high_voltage, bool tone, double if_mhz, int rate_ks) {
    meter::Settings settings = meter_settings(high_voltage, tone, if_mhz);
    settings.symbol_rate = rate_ks;
    const meter::QpskQuality quality =
        inside_->reception.qpsk(settings, inside_->jitter.around_zero(kRatioJitterDb));
    return {quality.locked, quality.offset_mhz + inside_->jitter.around_zero(kOffsetJitterMhz)};
}

}  // namespace m47
