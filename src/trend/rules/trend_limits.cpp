// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_limits.h"

#include <algorithm>
#include <cmath>

namespace m47::trend {
namespace {

constexpr double kRoom = 0.08;      // of the axis, on either side
constexpr double kMostPressed = 6;  // times as long as the values alone need

/// How an axis is measured out: in dB, or in decades of the bit error rate.
struct Scale {
    bool decades;
    double least_span;
    TrendRange nothing_in_sight;

    double from(double value) const {
        return decades ? std::log10(std::max(value, kLeastBer)) : value;
    }
    double to(double place) const { return decades ? std::pow(10.0, place) : place; }
};

Scale scale_of(measurement::Quantity quantity) {
    if (measurement::is_error_rate(quantity)) return {true, 2, {-9, -1}};
    if (quantity == measurement::Quantity::mer) return {false, 5, {0, 30}};
    return {false, 10, {20, 120}};
}

TrendRange at_least(TrendRange range, double span) {
    const double missing = std::max(0.0, span - range.span()) / 2;
    return {range.lower - missing, range.upper + missing};
}

TrendRange with_limits(TrendRange range, const TrendRange& limits, const Scale& scale) {
    const double longest = kMostPressed * range.span();
    const TrendRange alone = range;
    for (const double value : {limits.lower, limits.upper}) {
        if (!std::isfinite(value)) continue;
        const double limit = scale.from(value);
        if (alone.upper - limit > longest || limit - alone.lower > longest) continue;
        range.lower = std::min(range.lower, limit);
        range.upper = std::max(range.upper, limit);
    }
    return range;
}

}  // namespace

TrendRange value_axis(measurement::Quantity quantity, const std::optional<TrendRange>& values,
                      const std::optional<TrendRange>& limits) {
    const Scale scale = scale_of(quantity);
    TrendRange range = scale.nothing_in_sight;
    if (values)
        range = at_least({scale.from(values->lower), scale.from(values->upper)}, scale.least_span);
    if (limits) range = with_limits(range, *limits, scale);
    const double room = kRoom * range.span();
    return {scale.to(range.lower - room), scale.to(range.upper + room)};
}

}  // namespace m47::trend
