// SPDX-License-Identifier: GPL-3.0-or-later
#include "arc.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>

namespace m47::identify {
namespace {

/// Carriers nearer to each other than this part of their width cannot both be there.
constexpr double kMeet = 0.8;
/// A carrier is flat up to, and ends at, so many symbol rates on either side.
constexpr double kFlat = 0.325;
constexpr double kEnd = 0.675;
/// Beyond so many degrees next to nothing is received of a neighbour.
constexpr double kReachInBeams = 3.5;
constexpr double kUsualStep = 10;
/// Of all that is there so much is in no table, mostly this near to what is, of this width in MHz.
constexpr double kUnlistedOfListed = 0.1;
constexpr double kNearListed = 200;
constexpr double kUsualWidth = 18;
constexpr double kLeastUnlisted = 0.004;
constexpr double kMostUnlisted = 0.3;
/// Of a satellite of which a plan has a part, most of the rest is there as well.
constexpr double kBesidePlans = 0.6;
constexpr double kLightMetresMhz = 299.792458;

double width_of(double sky_mhz, double dish_cm) {
    return 70 * kLightMetresMhz / sky_mhz / (dish_cm / 100);
}

/// How high a carrier stands at `x` symbol rates from its centre, 0 to 1: a raised cosine.
double shape_at(double x) {
    const double into = (std::abs(x) - kFlat) / (kEnd - kFlat);
    if (into <= 0) return 1;
    return into >= 1 ? 0 : (1 + std::cos(std::numbers::pi * into)) / 2;
}

/// The integral of that from the centre to `x`, both in symbol rates.
double from_centre(double x) {
    const double far = std::min(std::abs(x), kEnd);
    const double into = std::max(0.0, far - kFlat);
    const double wide = (kEnd - kFlat) / std::numbers::pi;
    const double edge = into > 0 ? (into + wide * std::sin(into / wide)) / 2 : 0;
    return std::copysign(std::min(far, kFlat) + edge, x);
}

bool is_circular(const Carrier& carrier) {
    return carrier.polarisation == 'L' || carrier.polarisation == 'R';
}

using Rivals = std::vector<std::vector<std::size_t>>;

/// Tables of several years list what cannot be there at once: for each carrier, which others.
Rivals rivals_of(const std::vector<Carrier>& all) {
    Rivals rivals(all.size());
    for (std::size_t k = 0; k < all.size(); ++k)
        for (std::size_t other = 0; other < all.size(); ++other)
            if (other != k && exclude(all[k], all[other])) rivals[k].push_back(other);
    return rivals;
}

/// Any order, the same in every run.
void shuffle(std::vector<std::size_t>& order, std::uint64_t& state) {
    constexpr std::uint64_t kFactor = 6364136223846793005ULL;
    constexpr int kHighBits = 33;
    for (std::size_t left = order.size(); left > 1; --left) {
        state = state * kFactor + 1;
        std::swap(order[left - 1], order[(state >> kHighBits) % left]);
    }
}

/// The chance of each that it was there first, whatever the order in which they came: of two that
/// exclude each other a half, of a wide one in the place of many narrow ones far less.
std::vector<double> chances_to_be_first(const Rivals& rivals) {
    constexpr int kOrders = 60;
    std::vector<std::size_t> order(rivals.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<double> chances(rivals.size(), 0);
    std::uint64_t state = 1;
    for (int round = 0; round < kOrders; ++round) {
        shuffle(order, state);
        std::vector<bool> there(rivals.size(), false);
        for (const std::size_t next : order)
            there[next] =
                std::ranges::none_of(rivals[next], [&](std::size_t other) { return there[other]; });
        for (std::size_t k = 0; k < rivals.size(); ++k) chances[k] += there[k] ? 1 : 0;
    }
    // None is quite without a chance.
    for (double& chance : chances) chance = (chance + 1) / (kOrders + 1);
    return chances;
}

std::size_t usual_place(double if_mhz) {
    const double inside = std::clamp(if_mhz, kLowestIf, kHighestIf - 1) - kLowestIf;
    return static_cast<std::size_t>(inside / kUsualStep);
}

}  // namespace

bool exclude(const Carrier& one, const Carrier& other) {
    const bool alike = is_circular(one) == is_circular(other);
    if (one.state != other.state || (alike && one.polarisation != other.polarisation)) return false;
    return std::abs(one.if_mhz - other.if_mhz) < kMeet * kEnd * (one.rate + other.rate);
}

double Emitter::loss(double east) const {
    if (!carrier.east) return carrier.loss;
    const double widths = arc_between(*carrier.east, east) / width;
    return 12 * widths * widths + carrier.loss;
}

double Emitter::share(double if_mhz, double drift) const {
    const double low = (if_mhz - kFilterMhz / 2 - carrier.if_mhz - drift) / carrier.rate;
    const double high = low + kFilterMhz / carrier.rate;
    return carrier.rate * (from_centre(high) - from_centre(low)) / kFilterMhz;
}

double Emitter::slope(double if_mhz, double drift) const {
    const double low = (if_mhz - kFilterMhz / 2 - carrier.if_mhz - drift) / carrier.rate;
    const double high = low + kFilterMhz / carrier.rate;
    return (shape_at(low) - shape_at(high)) / kFilterMhz;
}

Arc::Arc(std::vector<Candidate> candidates, double dish_cm) : candidates_(std::move(candidates)) {
    double sum = 0;
    std::size_t count = 0;
    for (const Candidate& candidate : candidates_)
        for (const Carrier& carrier : candidate.carriers) {
            sum += carrier.sky_mhz;
            ++count;
        }
    beam_ = width_of(count > 0 ? sum / static_cast<double>(count) : 11725, dish_cm);
    std::vector<std::vector<Emitter>> own;
    for (std::size_t k = 0; k < size(); ++k) own.push_back(emitters_of(k, dish_cm));
    find_neighbours();
    count_usual(own);
    count_unlisted(own);
    gather(own);
}

/// What is around each of them, by frequency.
void Arc::gather(const std::vector<std::vector<Emitter>>& own) {
    around_.resize(size());
    for (std::size_t k = 0; k < size(); ++k) {
        for (const Emitter& emitter : own[k])
            around_[k][static_cast<std::size_t>(emitter.carrier.state)].push_back(emitter);
        for (const std::size_t other : neighbours_[k])
            for (const Emitter& emitter : own[other])
                around_[k][static_cast<std::size_t>(emitter.carrier.state)].push_back(emitter);
        for (std::vector<Emitter>& state : around_[k])
            std::ranges::stable_sort(state, {}, [](const Emitter& e) { return e.carrier.if_mhz; });
    }
}

std::vector<Emitter> Arc::emitters_of(std::size_t candidate, double dish_cm) const {
    const std::vector<Carrier>& carriers = candidates_[candidate].carriers;
    std::vector<Emitter> emitters;
    const Rivals rivals = rivals_of(carriers);
    const std::vector<double> first = chances_to_be_first(rivals);
    for (std::size_t k = 0; k < carriers.size(); ++k)
        emitters.push_back({carriers[k], candidate, kOnAir * first[k], !rivals[k].empty(),
                            width_of(carriers[k].sky_mhz, dish_cm)});
    return emitters;
}

void Arc::find_neighbours() {
    neighbours_.resize(size());
    for (std::size_t k = 0; k < size(); ++k) {
        std::vector<std::pair<double, std::size_t>> near;
        for (std::size_t other = 0; other < size(); ++other) {
            if (other == k) continue;
            double gap = 360;
            for (const double east : candidates_[other].positions)
                if (!candidates_[k].positions.empty()) gap = std::min(gap, distance(k, east));
            if (gap < kReachInBeams * beam_) near.emplace_back(gap, other);
        }
        std::ranges::sort(near);
        for (const auto& [gap, other] : near) neighbours_[k].push_back(other);
    }
}

void Arc::count_usual(const std::vector<std::vector<Emitter>>& own) {
    const std::size_t places = usual_place(kHighestIf) + 1;
    for (std::vector<double>& row : usual_) row.assign(places, 0);
    for (std::size_t k = 0; k < size(); ++k) {
        std::array<std::vector<double>, kStates> dark;
        for (std::vector<double>& row : dark) row.assign(places, 1);
        for (const Emitter& emitter : own[k])
            for (std::size_t place = 0; place < places; ++place) {
                const double mhz = kLowestIf + (static_cast<double>(place) + 0.5) * kUsualStep;
                dark[static_cast<std::size_t>(emitter.carrier.state)][place] *=
                    1 - emitter.chance * emitter.share(mhz, 0);
            }
        for (std::size_t state = 0; state < dark.size(); ++state)
            for (std::size_t place = 0; place < places; ++place)
                usual_[state][place] += (1 - dark[state][place]) / static_cast<double>(size());
    }
}

void Arc::count_unlisted(const std::vector<std::vector<Emitter>>& own) {
    unlisted_.resize(size());
    for (std::size_t k = 0; k < size(); ++k) {
        for (std::vector<double>& row : unlisted_[k]) row.assign(usual_place(kHighestIf) + 1, 0);
        for (const Emitter& emitter : own[k]) add_unlisted(unlisted_[k], emitter);
    }
}

/// What is not listed is likely near what is.
void Arc::add_unlisted(Band& band, const Emitter& emitter) {
    const double seen = (kUsualWidth + kFilterMhz) / (2 * kNearListed);
    const double more = kUnlistedOfListed * emitter.chance / kOnAir * seen;
    std::vector<double>& row = band[static_cast<std::size_t>(emitter.carrier.state)];
    const std::size_t last = usual_place(emitter.carrier.if_mhz + kNearListed);
    for (std::size_t k = usual_place(emitter.carrier.if_mhz - kNearListed); k <= last; ++k)
        row[k] += more;
}

double Arc::unlisted(std::size_t candidate, int state, double if_mhz) const {
    if (candidates_[candidate].is_plan) return kBesidePlans;
    const double chance =
        unlisted_[candidate][static_cast<std::size_t>(state)][usual_place(if_mhz)];
    return std::clamp(chance, kLeastUnlisted, kMostUnlisted);
}

double Arc::distance(std::size_t candidate, double east) const {
    double least = candidates_[candidate].positions.empty() ? 0 : 360;
    for (const double position : candidates_[candidate].positions)
        least = std::min(least, arc_between(position, east));
    return least;
}

bool Arc::is_nearest(std::size_t candidate, double east) const {
    const double own = distance(candidate, east);
    return std::ranges::none_of(neighbours_[candidate],
                                [&](std::size_t other) { return distance(other, east) < own; });
}

double Arc::usual_power(int state, double if_mhz) const {
    return usual_[static_cast<std::size_t>(state)][usual_place(if_mhz)];
}

}  // namespace m47::identify
