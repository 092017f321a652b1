// SPDX-License-Identifier: GPL-3.0-or-later
#include "carriers.h"

#include <algorithm>
#include <cmath>

namespace m47::band {
namespace {

/// What is less below the highest sample belongs to the flat top, dB.
constexpr double kTopDepth = 1.0;
/// The floor beside a carrier is looked for so far away, MHz.
constexpr double kFloorReach = 80;
/// A carrier so many filters wide has slopes of the filter alone.
constexpr double kWide = 2.0;
/// Its slopes tell the filter well where it is so high, dB.
constexpr double kClear = 8.0;
/// The filter may be so much wider than its slopes show, MHz.
constexpr double kFilterDoubt = 0.5;
/// Slopes of less or more are those of carriers that lie over one another, MHz.
constexpr double kLeastFilter = 6;
constexpr double kMostFilter = 12;

/// The lowest power on one side of `peak`: its valley, or what is lower a little farther on.
double floor_power(const BandCurve& curve, const Peak& peak, bool to_the_right) {
    double lowest = curve.level(peak.top);
    const double from = curve.mhz(peak.top);
    std::size_t place = peak.top;
    while (std::abs(curve.mhz(place) - from) <= kFloorReach) {
        lowest = std::min(lowest, curve.level(place));
        if (place == (to_the_right ? curve.size() - 1 : 0)) break;
        place = to_the_right ? place + 1 : place - 1;
    }
    return power_of(lowest);
}

/// The power of which `share` is reached there.
double wanted_power(const BandCurve& curve, const Peak& peak, double share, bool to_the_right) {
    const double floor = floor_power(curve, peak, to_the_right);
    return floor + share * (power_of(top_level(curve, peak)) - floor);
}

std::optional<double> crossing(const BandCurve& curve, const Peak& peak, double share,
                               bool to_the_right) {
    const std::optional<Bracket> bracket = bracket_at(curve, peak, share, to_the_right);
    if (!bracket) return std::nullopt;
    const double wanted = wanted_power(curve, peak, share, to_the_right);
    const double low = power_of(curve.level(bracket->low));
    const double high = power_of(curve.level(bracket->high));
    if (low == high) return curve.mhz(bracket->low);
    const double part = (wanted - low) / (high - low);
    return curve.mhz(bracket->low) + part * (curve.mhz(bracket->high) - curve.mhz(bracket->low));
}

/// How long the slopes are, MHz: twice what lies between a quarter and three quarters.
std::optional<double> slope_length(const BandCurve& curve, const Peak& peak) {
    const std::optional<double> outer = slopes_at(curve, peak, 0.25).distance();
    const std::optional<double> inner = slopes_at(curve, peak, 0.75).distance();
    return outer && inner ? std::optional(*outer - *inner) : std::nullopt;
}

double width_of(const BandCurve& curve, const Peak& peak, double seen, double filter) {
    if (seen > filter + kFilterDoubt) return seen;
    const std::optional<double> length = slope_length(curve, peak);
    return length ? std::min(*length, seen) : seen;
}

}  // namespace

double top_level(const BandCurve& curve, const Peak& peak) {
    std::vector<double> levels;
    for (std::size_t place = peak.left; place <= peak.right; ++place)
        if (curve.level(place) >= curve.level(peak.top) - kTopDepth)
            levels.push_back(curve.level(place));
    std::ranges::sort(levels);
    return levels[levels.size() * 3 / 4];
}

std::optional<Bracket> bracket_at(const BandCurve& curve, const Peak& peak, double share,
                                  bool to_the_right) {
    // The end of the band is no valley.
    const double floor = level_of(floor_power(curve, peak, to_the_right));
    if (curve.level(peak.top) - floor < kLeastHeight) return std::nullopt;
    const double wanted = wanted_power(curve, peak, share, to_the_right);
    std::size_t place = peak.top;
    const std::size_t end = to_the_right ? peak.right : peak.left;
    while (place != end) {
        const std::size_t next = to_the_right ? place + 1 : place - 1;
        if (power_of(curve.level(next)) < wanted)
            return Bracket{std::min(place, next), std::max(place, next)};
        place = next;
    }
    return std::nullopt;
}

Slopes slopes_at(const BandCurve& curve, const Peak& peak, double share) {
    return {crossing(curve, peak, share, false), crossing(curve, peak, share, true)};
}

std::optional<double> measured_filter(const BandCurve& curve) {
    std::vector<double> lengths;
    for (const Peak& peak : find_peaks(curve, kClear)) {
        const std::optional<double> seen = slopes_at(curve, peak, 0.5).distance();
        const std::optional<double> length = slope_length(curve, peak);
        if (!seen || !length || *seen < kWide * *length) continue;
        if (*length >= kLeastFilter && *length <= kMostFilter) lengths.push_back(*length);
    }
    if (lengths.empty()) return std::nullopt;
    std::ranges::sort(lengths);
    return lengths[lengths.size() / 4];
}

std::vector<Carrier> find_carriers(const BandCurve& curve, double filter) {
    std::vector<Carrier> carriers;
    for (const Peak& peak : find_peaks(curve, kLeastHeight)) {
        const Slopes half = slopes_at(curve, peak, 0.5);
        const std::optional<double> seen = half.distance();
        if (!seen) continue;
        carriers.push_back({.centre = (*half.left + *half.right) / 2,
                            .width = width_of(curve, peak, *seen, filter),
                            .level = top_level(curve, peak),
                            .height = height_of(curve, peak)});
    }
    return carriers;
}

}  // namespace m47::band
