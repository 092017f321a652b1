// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_series.h"

#include <algorithm>

namespace m47::trend {
namespace {

constexpr double kPause = 4;                // times the usual spacing
constexpr std::size_t kFewestSpacings = 3;  // before anything is usual

bool earlier(const TrendPoint& one, const TrendPoint& other) {
    return one.time < other.time;
}

}  // namespace

QString TrendSeries::name() const {
    return key_.unit ? key_.name() + QStringLiteral(" · ") + measurement::unit_text(key_.unit)
                     : key_.name();
}

void TrendSeries::add(const TrendPoint& point) {
    if (!points_.empty()) count_spacing(point.time - last_.time);
    last_ = point;
    points_.push_back(point);
    for (const measurement::Quantity quantity : measurement::kQuantities) {
        const measurement::Reading reading = point.reading(quantity);
        if (!reading.measured()) continue;
        Extremes& extremes = extremes_[static_cast<std::size_t>(quantity)];
        // A comparison with what was never measured is false.
        if (!(extremes.minimum.value <= reading.value)) extremes.minimum = reading;
        if (!(extremes.maximum.value >= reading.value)) extremes.maximum = reading;
    }
}

void TrendSeries::settle() {
    const auto fresh = points_.begin() + static_cast<std::ptrdiff_t>(settled_);
    const auto before = fresh == points_.begin() ? fresh : fresh - 1;
    if (!std::is_sorted(before, points_.end(), earlier)) {
        std::stable_sort(fresh, points_.end(), earlier);
        const auto place = std::upper_bound(points_.begin(), fresh, *fresh, earlier);
        // What is summed up from there on holds no longer.
        const auto whole =
            static_cast<std::size_t>((place - points_.begin()) / TrendBlock::kPoints);
        blocks_.resize(std::min(blocks_.size(), whole));
        std::inplace_merge(place, fresh, points_.end(), earlier);
    }
    settled_ = points_.size();
    const auto points = static_cast<std::ptrdiff_t>(settled_);
    for (auto begin = std::ssize(blocks_) * TrendBlock::kPoints;
         begin + TrendBlock::kPoints <= points; begin += TrendBlock::kPoints)
        blocks_.push_back(trend_block(points_.cbegin() + begin));
}

void TrendSeries::count_spacing(double seconds) {
    if (seconds < 0) return;
    std::size_t bin = 0;
    for (double bound = 1; seconds >= bound && bin + 1 < spacings_.size(); bound *= 2) ++bin;
    ++spacings_[bin];
    ++spacings_counted_;
}

double TrendSeries::longest_spacing() const {
    if (joined_ || spacings_counted_ < kFewestSpacings)
        return std::numeric_limits<double>::infinity();
    // The bound above the median stands for what is usual: one to two times the median.
    std::size_t below = 0;
    double bound = 1;
    for (const std::size_t count : spacings_) {
        below += count;
        if (below * 2 > spacings_counted_) break;
        bound *= 2;
    }
    return kPause * bound;
}

}  // namespace m47::trend
