// SPDX-License-Identifier: GPL-3.0-or-later
#include "orbit_reception.h"

#include <algorithm>
#include <cmath>

#include "carrier_shape.h"
#include "decibel.h"
#include "dish_beam.h"
#include "qpsk_demodulator.h"

namespace meter {

namespace {

constexpr double kNoiseDbuv = 38.0;
constexpr double kCableTiltDb = -4.0;
constexpr double kTerrestrialNoiseDbuv = 8.0;
constexpr double kConverterStartMhz = 900.0;
constexpr double kFaintDb = -40.0;
// So far the satellites around are kept while the dish turns.
constexpr double kKeptDegrees = 3.0;
// The lowest frequencies that a converter for C band and any other one takes.
constexpr double kLowestBelowMhz = 3000.0;
constexpr double kLowestMhz = 10000.0;
constexpr double kOffCentreLossDb = 1.0;

/// So many degrees off the axis nothing is left that counts.
double reach(double dish_cm, double mhz) {
    return beam_width(dish_cm, mhz) * std::sqrt(kFaintDb / -12.0);
}

double noise_power(double low_mhz, double high_mhz) {
    const double centre = (low_mhz + high_mhz) / 2.0;
    return linear(orbit_noise_density(centre)) * (high_mhz - low_mhz);
}

}  // namespace

double orbit_noise_density(double if_mhz) {
    if (if_mhz < kConverterStartMhz) return kTerrestrialNoiseDbuv;
    return kNoiseDbuv + kCableTiltDb * (if_mhz - 920.0) / (2150.0 - 920.0);
}

OrbitReception::OrbitReception(const Orbit& orbit, const Lnb& lnb) : orbit_(orbit), lnb_(lnb) {
    const double lowest = lnb.for_c_band() ? kLowestBelowMhz : kLowestMhz;
    reach_ = reach(orbit.options().dish_cm, lowest) + kKeptDegrees;
}

void OrbitReception::point(double east) {
    east_ = east;
    if (!kept_around_ || std::abs(arc_between(*kept_around_, east)) > kKeptDegrees) {
        in_reach_ = orbit_.around(east, reach_);
        kept_around_ = east;
    }
    for (auto& of_voltage : rays_)
        for (Rays& rays : of_voltage) rays.clear();
    for (const OnAir& on_air : in_reach_) add(on_air);
}

void OrbitReception::set_time(double seconds) {
    fade_ = linear(orbit_.fade_db(seconds));
}

void OrbitReception::add(const OnAir& on_air) {
    const ListedTransponder& transponder = on_air.transponder;
    const double width = beam_width(orbit_.options().dish_cm, transponder.mhz);
    const double loss = beam_loss(arc_between(east_, on_air.east), width);
    if (loss < kFaintDb) return;
    for (const bool tone : {false, true}) {
        const auto if_mhz = converted(lnb_, tone, transponder.mhz);
        if (!if_mhz) continue;
        Ray ray;
        ray.if_mhz = *if_mhz + orbit_.drift_mhz();
        ray.symbol_mhz = transponder.symbol_rate / 1000.0;
        ray.symbol_rate = transponder.symbol_rate;
        ray.code = transponder.code;
        ray.second_generation = transponder.second_generation;
        for (const bool high : {false, true}) {
            const double polar = polarisation_loss(lnb_, high, transponder.polarisation);
            ray.clear_cn = linear(on_air.cn_db + loss + polar);
            ray.density = ray.clear_cn * linear(orbit_noise_density(ray.if_mhz));
            rays_[high ? 1 : 0][tone ? 1 : 0].push_back(ray);
        }
    }
}

const OrbitReception::Rays* OrbitReception::rays_at(const Settings& settings) const {
    if (is_terrestrial(settings)) return nullptr;
    const LnbState state = lnb_state(settings);
    return &rays_[state.high_voltage ? 1 : 0][state.tone ? 1 : 0];
}

double OrbitReception::power_of(const Ray& ray, double low_mhz, double high_mhz) const {
    const double half = ray.symbol_mhz * (1.0 + kRollOff) / 2.0;
    if (ray.if_mhz + half <= low_mhz || ray.if_mhz - half >= high_mhz) return 0.0;
    return fade_ * ray.density *
           shape_between(ray.symbol_mhz, low_mhz - ray.if_mhz, high_mhz - ray.if_mhz);
}

double OrbitReception::carriers_power(const Rays& rays, double low_mhz, double high_mhz) const {
    double sum = 0.0;
    for (const Ray& ray : rays) sum += power_of(ray, low_mhz, high_mhz);
    return sum;
}

double OrbitReception::band_power(const Settings& settings, double low_mhz, double high_mhz) const {
    const Rays* rays = rays_at(settings);
    const double carriers = rays == nullptr ? 0.0 : carriers_power(*rays, low_mhz, high_mhz);
    return decibel(noise_power(low_mhz, high_mhz) + carriers);
}

const OrbitReception::Ray* OrbitReception::strongest_of(const Rays& rays, double low_mhz,
                                                        double high_mhz) const {
    const Ray* best = nullptr;
    double best_power = 0.0;
    for (const Ray& ray : rays) {
        const double power = power_of(ray, low_mhz, high_mhz);
        if (power <= best_power) continue;
        best = &ray;
        best_power = power;
    }
    return best;
}

double OrbitReception::channel_cn(const Settings& settings, double width_mhz) const {
    const double low = settings.if_mhz - width_mhz / 2.0;
    const double high = settings.if_mhz + width_mhz / 2.0;
    const Rays* rays = rays_at(settings);
    const Ray* carrier = rays == nullptr ? nullptr : strongest_of(*rays, low, high);
    if (carrier == nullptr) return 0.0;
    const double signal = power_of(*carrier, low, high);
    const double others = carriers_power(*rays, low, high) - signal;
    return decibel(signal / (noise_power(low, high) + std::max(0.0, others)) + 1.0e-6);
}

const OrbitReception::Ray* OrbitReception::locked_ray(const Rays& rays,
                                                      const Settings& settings) const {
    const double half = demodulator_width(settings.symbol_rate) / 2.0;
    const Ray* ray = strongest_of(rays, settings.if_mhz - half, settings.if_mhz + half);
    if (ray == nullptr || ray->second_generation) return nullptr;
    const int rate_error = std::abs(settings.symbol_rate - ray->symbol_rate);
    if (rate_error > ray->symbol_rate * kRateTolerance) return nullptr;
    const double offset = std::abs(ray->if_mhz - settings.if_mhz);
    return offset <= capture_range(ray->symbol_rate) ? ray : nullptr;
}

double OrbitReception::matched_cn(const Rays& rays, const Ray& ray) const {
    const double low = ray.if_mhz - ray.symbol_mhz / 2.0;
    const double high = ray.if_mhz + ray.symbol_mhz / 2.0;
    const double others = carriers_power(rays, low, high) - power_of(ray, low, high);
    const double signal = fade_ * ray.density * ray.symbol_mhz;
    return decibel(signal / (noise_power(low, high) + std::max(0.0, others)));
}

QpskQuality OrbitReception::qpsk(const Settings& settings, double cn_error_db) const {
    const Rays* rays = rays_at(settings);
    const Ray* ray = rays == nullptr ? nullptr : locked_ray(*rays, settings);
    if (ray == nullptr) return {};
    const double offset = ray->if_mhz - settings.if_mhz;
    const double off_centre = offset / capture_range(ray->symbol_rate);
    const double cn =
        matched_cn(*rays, *ray) + cn_error_db - kOffCentreLossDb * off_centre * off_centre;
    if (cn < lowest_lock_cn(ray->code)) return {};
    QpskQuality result;
    result.locked = true;
    result.channel_ber = std::clamp(ber_of_channel(cn), kBerFloor, kBerCeiling);
    result.corrected_ber =
        std::clamp(ber_behind_viterbi(cn, ray->code), kBerFloor / 10, kBerCeiling);
    result.offset_mhz = offset;
    result.mer_db = std::clamp(cn - kMerLossDb, kMerFloorDb, kMerCeilingDb);
    return result;
}

}  // namespace meter
