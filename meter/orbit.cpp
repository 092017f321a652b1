// SPDX-License-Identifier: GPL-3.0-or-later
#include "orbit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "dish_beam.h"

namespace meter {

namespace {

constexpr double kNeighbours = 0.5;
constexpr double kRoundingDegrees = 0.01;
// Carriers of one polarisation may meet at their edges.
constexpr double kEdgesMeet = 0.8;
constexpr double kUsualEirpDbw = 50.0;
constexpr double kUsualEirpBelowDbw = 40.0;  // in C band
constexpr double kCBandEndMhz = 7000.0;
constexpr double kEirpSpreadDb = 3.0;
constexpr double kPercent = 100.0;
constexpr int kTries = 20;
// Two periods without a common multiple, so that the fade does not repeat itself.
constexpr double kLongPeriodSeconds = 1200.0;
constexpr double kShortPeriodSeconds = 419.0;
constexpr std::uint64_t kSkyStream = 0x5EA5'0F5A'7E11'17E5ULL;

/// Chance of its own for each neighbourhood, so that none depends on which were asked for before.
Jitter chance_of(std::uint64_t seed, std::size_t number) {
    Jitter mixed(seed ^ kSkyStream);
    return Jitter(mixed.bits() + number * 0xD1B5'4A32'D192'ED03ULL);
}

double share(Jitter& chance) {
    return (chance.around_zero(1.0) + 1.0) / 2.0;
}

bool collide(const ListedTransponder& a, const ListedTransponder& b) {
    if (a.circular() == b.circular() && a.polarisation != b.polarisation) return false;
    return std::abs(a.mhz - b.mhz) < kEdgesMeet * (a.width_mhz() + b.width_mhz()) / 2.0;
}

bool is_free(const ListedTransponder& wanted, const std::vector<OnAir>& taken) {
    return std::none_of(taken.begin(), taken.end(),
                        [&](const OnAir& other) { return collide(wanted, other.transponder); });
}

/// All transponders listed in the neighbourhood, in an order of chance.
std::vector<OnAir> shuffled(const ScanTables& tables, const Neighbourhood& where, Jitter& chance) {
    std::vector<OnAir> all;
    for (std::size_t i = where.first; i < where.first + where.count; ++i) {
        const ListedPosition& position = tables.positions()[i];
        for (const ListedTransponder& listed : position.transponders)
            all.push_back({listed, position.east, 0.0, true});
    }
    for (std::size_t left = all.size(); left > 1; --left)
        std::swap(all[left - 1], all[chance.below(left)]);
    return all;
}

/// A transponder that looks like the listed one but has another frequency and another width.
OnAir made_up(const OnAir& like, Jitter& chance) {
    constexpr int rates[] = {27500, 22000, 30000, 6111, 3333};
    constexpr double farthest_mhz = 200.0;
    OnAir result = like;
    result.transponder.mhz += std::round(chance.around_zero(farthest_mhz));
    result.transponder.symbol_rate = rates[chance.below(std::size(rates))];
    result.transponder.second_generation = chance.below(2) == 1;
    result.listed = false;
    return result;
}

void add_unlisted(std::vector<OnAir>& on_air, std::size_t wanted, Jitter& chance) {
    const std::size_t listed = on_air.size();
    for (std::size_t i = 0; listed > 0 && i < wanted; ++i) {
        for (int tries = 0; tries < kTries; ++tries) {
            const OnAir candidate = made_up(on_air[chance.below(listed)], chance);
            if (!is_free(candidate.transponder, on_air)) continue;
            on_air.push_back(candidate);
            break;
        }
    }
}

/// `percent` of a number, where chance decides on the rest of the division.
std::size_t part_of(std::size_t number, double percent, Jitter& chance) {
    const double exact = static_cast<double>(number) * percent / kPercent;
    return static_cast<std::size_t>(std::floor(exact + share(chance)));
}

}  // namespace

std::vector<Neighbourhood> neighbourhoods_of(const ScanTables& tables) {
    std::vector<Neighbourhood> result;
    const auto& positions = tables.positions();
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double east = positions[i].east;
        if (result.empty() || east - result.back().east > kNeighbours + kRoundingDegrees)
            result.push_back({i, 0, east, east});
        ++result.back().count;
        result.back().east = east;
    }
    return result;
}

Orbit::Orbit(const ScanTables& tables, const OrbitOptions& options)
    : tables_(tables), options_(options), neighbourhoods_(neighbourhoods_of(tables)) {
    Jitter chance = chance_of(options.seed, neighbourhoods_.size());
    drift_mhz_ = chance.around_zero(options.drift_mhz);
    fade_phase_ = share(chance) * 2.0 * std::numbers::pi;
}

std::vector<OnAir> Orbit::on_air(const Neighbourhood& where) const {
    Jitter chance = chance_of(options_.seed, where.first);
    const std::vector<OnAir> listed = shuffled(tables_, where, chance);
    std::vector<OnAir> result;
    for (const OnAir& next : listed) {
        // Tables of several years list what cannot be there at once.
        if (is_free(next.transponder, result)) result.push_back(next);
    }
    const std::size_t usable = result.size();
    add_unlisted(result, part_of(usable, options_.unlisted_percent, chance), chance);
    // The order is one of chance already.
    const std::size_t off = part_of(usable, options_.off_air_percent, chance);
    result.erase(result.begin(), result.begin() + static_cast<std::ptrdiff_t>(off));
    const double stronger = chance.around_zero(kEirpSpreadDb);
    for (OnAir& next : result)
        next.cn_db = usual_cn(next.transponder, stronger) + chance.around_zero(options_.spread_db);
    return result;
}

double Orbit::usual_cn(const ListedTransponder& transponder, double stronger_db) const {
    if (options_.cn_db) return *options_.cn_db + stronger_db / kEirpSpreadDb * options_.unequal_db;
    const bool below = transponder.mhz < kCBandEndMhz;
    const double eirp = (below ? kUsualEirpBelowDbw : kUsualEirpDbw) + stronger_db;
    return link_cn(eirp, options_.dish_cm, transponder.mhz, transponder.symbol_rate / 1000.0);
}

std::vector<OnAir> Orbit::around(double east, double within) const {
    std::vector<OnAir> result;
    for (const Neighbourhood& where : neighbourhoods_) {
        const double half = (where.east - where.west) / 2.0;
        const double away = std::abs(arc_between(east, where.west + half));
        if (away > half + within) continue;
        const std::vector<OnAir> found = on_air(where);
        result.insert(result.end(), found.begin(), found.end());
    }
    return result;
}

double Orbit::fade_db(double seconds) const {
    const double turn = 2.0 * std::numbers::pi * seconds;
    const double slow = std::sin(turn / kLongPeriodSeconds + fade_phase_);
    const double quick = std::sin(turn / kShortPeriodSeconds + 2.0 * fade_phase_);
    return -options_.fade_db - options_.weather_db * (2.0 + slow + quick) / 4.0;
}

}  // namespace meter
