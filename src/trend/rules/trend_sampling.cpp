// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_sampling.h"

#include <algorithm>
#include <array>
#include <limits>

namespace m47::trend {
namespace {

constexpr std::ptrdiff_t kPointsPerColumn = 4;  // from here on columns are summed up
constexpr std::ptrdiff_t kColumnsPerDot = 8;    // a dot needs room to be told from its neighbours
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

/// Collects the points of one column at a time.
class Sampler {
  public:
    Sampler(measurement::Quantity quantity, TrendRange shown, double columns_per_second,
            double longest_spacing, bool every_dot)
        : quantity_(quantity),
          shown_(shown),
          columns_per_second_(columns_per_second),
          longest_spacing_(longest_spacing),
          every_dot_(every_dot) {
        samples_.dense = columns_per_second > 0;
    }

    void take(const TrendPoint& point) {
        if (point.apart || point.time - previous_time_ > longest_spacing_) broken_ = true;
        previous_time_ = point.time;
        if (!point.reading(quantity_).measured()) {
            broken_ = true;
            return;
        }
        add(trend_spot(point, quantity_), point.status == measurement::Verdict::fail);
        broken_ = false;
    }

    /// Takes the points that `block` sums up, if all belong to the column that has begun; else
    /// takes none of them and says so.
    bool take(const TrendBlock& block) {
        if (column_.points == 0 || !(block.end < column_.end)) return false;
        if (block.begin < shown_.lower || block.end > shown_.upper) return false;
        const TrendBlock::Extent& extent = block.extents[static_cast<std::size_t>(quantity_)];
        // Where in the column a line breaks is all the same.
        if (extent.broken || block.longest_spacing > longest_spacing_ ||
            block.begin - previous_time_ > longest_spacing_)
            broken_ = true;
        previous_time_ = block.end;
        if (!extent.measured) return true;
        for (const TrendSpot& spot : {extent.least, extent.greatest, extent.last}) add(spot, false);
        if (extent.failed)
            for (const TrendSpot& spot : {extent.least_failed, extent.greatest_failed})
                add_failed(spot);
        broken_ = false;
        return true;
    }

    TrendSamples finish() {
        end_column(false);
        return std::move(samples_);
    }

  private:
    /// The points of a column that matter, in the order in which they came.
    struct ColumnOfPoints {
        double end = kNoNumber;  ///< the time at which the next column begins
        std::size_t points = 0;
        TrendSpot first, least, greatest, last;
        bool joined = false;  ///< a line leads here from the column before
        bool broken = false;  ///< a line is broken within it
        std::size_t fails = 0;
        TrendSpot least_failed, greatest_failed;
    };

    void add(const TrendSpot& spot, bool failed) {
        // Without columns the end is no number: every point is one of its own.
        if (column_.points > 0 && spot.time < column_.end) {
            column_.broken = column_.broken || broken_;
        } else {
            begin_column(spot);
        }
        ++column_.points;
        column_.last = spot;
        if (spot.value < column_.least.value) column_.least = spot;
        if (spot.value > column_.greatest.value) column_.greatest = spot;
        if (failed) add_failed(spot);
        if (spot.time >= shown_.lower && spot.time <= shown_.upper) widen(spot.value);
        if (every_dot_) samples_.dots.push_back(spot);
    }

    void begin_column(const TrendSpot& spot) {
        const bool joined = column_.points > 0 && !broken_ && !column_.broken;
        end_column(joined);
        column_ = {};
        if (columns_per_second_ > 0) {
            const double number = std::floor((spot.time - shown_.lower) * columns_per_second_);
            column_.end = shown_.lower + (number + 1) / columns_per_second_;
        }
        column_.joined = joined;
        column_.first = column_.least = column_.greatest = spot;
    }

    void add_failed(const TrendSpot& spot) {
        if (column_.fails == 0 || spot.value < column_.least_failed.value)
            column_.least_failed = spot;
        if (column_.fails == 0 || spot.value > column_.greatest_failed.value)
            column_.greatest_failed = spot;
        ++column_.fails;
    }

    void widen(double value) {
        if (!samples_.values) samples_.values = TrendRange{value, value};
        samples_.values->lower = std::min(samples_.values->lower, value);
        samples_.values->upper = std::max(samples_.values->upper, value);
    }

    void end_column(bool joined_to_next) {
        if (column_.points == 0) return;
        if (column_.fails > 0) samples_.failed.push_back(column_.least_failed);
        if (column_.fails > 1 && column_.least_failed.value != column_.greatest_failed.value)
            samples_.failed.push_back(column_.greatest_failed);
        const bool flat = column_.least.value == column_.greatest.value;
        if (flat && !column_.joined && !joined_to_next) {
            if (!every_dot_) samples_.dots.push_back(column_.first);
            return;
        }
        if (!column_.joined && !samples_.line.empty())
            samples_.line.push_back({column_.first.time, kNoNumber});
        draw_column();
    }

    void draw_column() {
        auto [second, third] = std::pair(column_.least, column_.greatest);
        if (third.time < second.time) std::swap(second, third);
        std::vector<TrendSpot>& line = samples_.line;
        line.push_back(column_.first);
        for (const TrendSpot& spot : {second, third, column_.last})
            if (spot.time != line.back().time || spot.value != line.back().value)
                line.push_back(spot);
    }

    const measurement::Quantity quantity_;
    const TrendRange shown_;
    const double columns_per_second_;
    const double longest_spacing_;
    const bool every_dot_;
    double previous_time_ = std::numeric_limits<double>::infinity();
    bool broken_ = false;
    ColumnOfPoints column_;
    TrendSamples samples_;
};

}  // namespace

TrendSamples sample_trend(const TrendSeries& series, measurement::Quantity quantity,
                          TrendRange shown, int columns) {
    const auto& points = series.points();
    auto from =
        std::lower_bound(points.begin(), points.end(), shown.lower,
                         [](const TrendPoint& point, double time) { return point.time < time; });
    auto to =
        std::upper_bound(from, points.end(), shown.upper,
                         [](double time, const TrendPoint& point) { return time < point.time; });
    const std::ptrdiff_t in_sight = to - from;
    // The neighbours out of sight say where the line comes from and where it goes.
    if (from != points.begin()) --from;
    if (to != points.end()) ++to;
    const bool dense = in_sight > columns * kPointsPerColumn && shown.span() > 0;
    Sampler sampler(quantity, shown, dense ? columns / shown.span() : 0, series.longest_spacing(),
                    in_sight * kColumnsPerDot <= columns);
    const auto& blocks = series.blocks();
    auto place = from - points.begin();
    while (from != to) {
        const auto number = static_cast<std::size_t>(place / TrendBlock::kPoints);
        const bool whole = dense && place % TrendBlock::kPoints == 0 && number < blocks.size() &&
                           to - from >= TrendBlock::kPoints && sampler.take(blocks[number]);
        if (!whole) sampler.take(*from);
        const std::ptrdiff_t taken = whole ? TrendBlock::kPoints : 1;
        from += taken;
        place += taken;
    }
    return sampler.finish();
}

}  // namespace m47::trend
