// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_block.h"

#include <algorithm>

namespace m47::trend {
namespace {

void add_point(TrendBlock::Extent& extent, const TrendPoint& point,
               measurement::Quantity quantity) {
    const bool measured = point.reading(quantity).measured();
    extent.broken = extent.broken || point.apart || !measured;
    if (!measured) return;
    const TrendSpot spot = trend_spot(point, quantity);
    if (!extent.measured || spot.value < extent.least.value) extent.least = spot;
    if (!extent.measured || spot.value > extent.greatest.value) extent.greatest = spot;
    extent.measured = true;
    extent.last = spot;
    if (point.status != measurement::Verdict::fail) return;
    if (!extent.failed || spot.value < extent.least_failed.value) extent.least_failed = spot;
    if (!extent.failed || spot.value > extent.greatest_failed.value) extent.greatest_failed = spot;
    extent.failed = true;
}

}  // namespace

TrendSpot trend_spot(const TrendPoint& point, measurement::Quantity quantity) {
    return {point.time, plotted_value(quantity, point.reading(quantity).value)};
}

TrendBlock trend_block(const TrendPoints::const_iterator& first) {
    TrendBlock block;
    block.begin = block.end = first->time;
    std::for_each(first, first + TrendBlock::kPoints, [&](const TrendPoint& point) {
        block.longest_spacing = std::max(block.longest_spacing, point.time - block.end);
        block.end = point.time;
        for (const measurement::Quantity quantity : measurement::kQuantities)
            add_point(block.extents[static_cast<std::size_t>(quantity)], point, quantity);
    });
    return block;
}

}  // namespace m47::trend
