// SPDX-License-Identifier: GPL-3.0-or-later
#include "sweep_plan.h"

#include <algorithm>
#include <cmath>

#include "carriers.h"
#include "extremes.h"

namespace m47::band {
namespace {

/// A carrier of 4 MHz is 12 MHz wide at its foot, as the filter shows it, and a valley of 3 dB
/// about as much: one sample or two lie in each.
constexpr double kCoarseStep = 5;
constexpr double kFinestStep = 1;
/// More than the meter's jitter makes of two samples of a flat top, dB.
constexpr double kHint = 0.8;
/// What stands out by more needs no closer look, dB.
constexpr double kClearHint = 4;
constexpr double kBesideExtremes = 2;
constexpr double kOnSlopes = 2.5;
/// The foot of a strong carrier on which a weaker one may stand, dB.
constexpr double kSteep = 3;
constexpr double kFlat = 1;

/// The lowest level in the neighbourhood of a sample.
double lowest_level(const BandCurve& curve, std::size_t place) {
    constexpr double kNeighbourhood = 80;  // MHz
    double lowest = curve.level(place);
    for (std::size_t k = 0; k < curve.size(); ++k)
        if (std::abs(curve.mhz(k) - curve.mhz(place)) <= kNeighbourhood)
            lowest = std::min(lowest, curve.level(k));
    return lowest;
}

std::vector<double> grid(const SweepSpan& span, double step) {
    std::vector<double> points;
    const auto steps = static_cast<int>(std::floor((span.to - span.from) / step + 1e-9));
    for (int k = 0; k <= steps; ++k) points.push_back(span.from + k * step);
    if (points.back() < span.to - 1e-9) points.push_back(span.to);
    return points;
}

}  // namespace

SweepPlan::SweepPlan(const SweepSpan& span)
    : span_(span), coarse_(grid(span, span.step.value_or(kCoarseStep))) {}

std::optional<double> SweepPlan::next() {
    if (coarse_asked_ < coarse_.size()) return coarse_[coarse_asked_];
    return span_.step ? std::nullopt : refinement();
}

void SweepPlan::take(const Sample& answer) {
    ++asked_;
    if (coarse_asked_ < coarse_.size() && coarse_[coarse_asked_] == answer.mhz) ++coarse_asked_;
    if (answer.level.measured())
        curve_.take(answer);
    else
        silent_.insert(answer.mhz);
}

int SweepPlan::expected() const {
    if (span_.step) return static_cast<int>(coarse_.size());
    // An edge takes two or three questions more.
    constexpr int kOfACarrier = 6;
    const double share = coarse_asked_ == 0 ? 1
                                            : static_cast<double>(coarse_asked_) /
                                                  static_cast<double>(coarse_.size());
    const auto peaks = static_cast<double>(find_peaks(curve_, kLeastHeight).size());
    const int whole =
        static_cast<int>(static_cast<double>(coarse_.size()) + kOfACarrier * peaks / share);
    return std::max(whole, asked_ + 1);
}

/// A grid point strictly between the samples `low` and `high` that are more than `finest` MHz
/// apart, as near to `guess` as may be.
std::optional<double> SweepPlan::between(std::size_t low, std::size_t high, double finest,
                                         double guess) const {
    const double from = curve_.mhz(low);
    const double to = curve_.mhz(high);
    if (to - from <= finest + 1e-9) return std::nullopt;
    const double wished = from + std::round((guess - from) / kFinestStep) * kFinestStep;
    double point = std::clamp(wished, from + kFinestStep, to - kFinestStep);
    if (point <= from || point >= to) point = (from + to) / 2;
    return silent_.contains(point) ? std::nullopt : std::optional(point);
}

std::optional<double> SweepPlan::halved(std::size_t low, std::size_t high, double finest) const {
    return between(low, high, finest, (curve_.mhz(low) + curve_.mhz(high)) / 2);
}

/// A point in the wider of the gaps beside the sample `place`.
std::optional<double> SweepPlan::narrowed(std::size_t place, double finest) const {
    const double below = place > 0 ? curve_.mhz(place) - curve_.mhz(place - 1) : 0;
    const double above = place + 1 < curve_.size() ? curve_.mhz(place + 1) - curve_.mhz(place) : 0;
    if (below >= above && place > 0)
        if (const auto point = halved(place - 1, place, finest)) return point;
    return place + 1 < curve_.size() ? halved(place, place + 1, finest) : std::nullopt;
}

std::optional<double> SweepPlan::refinement() const {
    if (const auto point = beside_extremes()) return point;
    if (const auto point = at_shoulders()) return point;
    if (const auto point = at_edges()) return point;
    return on_slopes();
}

/// Where a peak or a valley shows a little, it may be much more between the samples.
std::optional<double> SweepPlan::beside_extremes() const {
    for (const Peak& peak : find_peaks(curve_, kHint)) {
        const double top = curve_.level(peak.top);
        const double left = top - curve_.level(peak.left);
        const double right = top - curve_.level(peak.right);
        if (std::min(left, right) > kClearHint) continue;
        if (const auto point = narrowed(peak.top, kBesideExtremes)) return point;
        if (left < kClearHint)
            if (const auto point = narrowed(peak.left, kBesideExtremes)) return point;
        if (right < kClearHint)
            if (const auto point = narrowed(peak.right, kBesideExtremes)) return point;
    }
    return std::nullopt;
}

/// At the foot of a steep slope that ends high above the floor a narrow valley may lie between the
/// samples, with a weaker carrier behind it.
std::optional<double> SweepPlan::at_shoulders() const {
    for (std::size_t place = 1; place + 1 < curve_.size(); ++place) {
        const double here = curve_.level(place);
        const double below = curve_.level(place - 1) - here;
        const double above = curve_.level(place + 1) - here;
        const bool falls = below >= kSteep && std::abs(above) < kFlat;
        const bool rises = above >= kSteep && std::abs(below) < kFlat;
        if (!falls && !rises) continue;
        if (here - lowest_level(curve_, place) < kSteep) continue;
        if (const auto point = narrowed(place, kBesideExtremes)) return point;
    }
    return std::nullopt;
}

/// Down to 1 MHz where a carrier has half of its power.
std::optional<double> SweepPlan::at_edges() const {
    for (const Peak& peak : find_peaks(curve_, kLeastHeight)) {
        for (const bool to_the_right : {false, true}) {
            const auto bracket = bracket_at(curve_, peak, 0.5, to_the_right);
            const Slopes slopes = slopes_at(curve_, peak, 0.5);
            const auto guess = to_the_right ? slopes.right : slopes.left;
            if (!bracket || !guess) continue;
            if (const auto point = between(bracket->low, bracket->high, kFinestStep, *guess))
                return point;
        }
    }
    return std::nullopt;
}

/// The slopes of a carrier no wider than the filter tell its width.
std::optional<double> SweepPlan::on_slopes() const {
    constexpr double kAsWideAsTheFilter = 12;
    for (const Peak& peak : find_peaks(curve_, kLeastHeight)) {
        const auto seen = slopes_at(curve_, peak, 0.5).distance();
        if (!seen || *seen > kAsWideAsTheFilter) continue;
        for (const double share : {0.25, 0.75})
            for (const bool to_the_right : {false, true})
                if (const auto bracket = bracket_at(curve_, peak, share, to_the_right))
                    if (const auto point = halved(bracket->low, bracket->high, kOnSlopes))
                        return point;
    }
    return std::nullopt;
}

}  // namespace m47::band
