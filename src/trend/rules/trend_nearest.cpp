// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_nearest.h"

#include <algorithm>
#include <cmath>

namespace m47::trend {

std::optional<TrendPoint> nearest_point(const TrendSeries& series, measurement::Quantity quantity,
                                        double time, double reach) {
    const TrendPoints& points = series.points();
    std::optional<TrendPoint> nearest;
    auto at = std::lower_bound(
        points.begin(), points.end(), time - reach,
        [](const TrendPoint& point, double earliest) { return point.time < earliest; });
    for (; at != points.end() && at->time <= time + reach; ++at) {
        if (!at->reading(quantity).measured()) continue;
        const double away = std::abs(at->time - time);
        if (!nearest || away < std::abs(nearest->time - time)) nearest = *at;
        // They lie in their order of time: from here on they are further and further away.
        if (at->time > time) break;
    }
    return nearest;
}

}  // namespace m47::trend
