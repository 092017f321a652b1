// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <utility>
#include <vector>

#include "series_key.h"
#include "trend_block.h"

namespace m47::trend {

/// The rows of one program in the order of their time.
class TrendSeries {
  public:
    /// With `joined` no pause breaks its line.
    explicit TrendSeries(measurement::SeriesKey key, bool joined = false)
        : key_(std::move(key)), joined_(joined) {}

    /// What the measurements of the series have in common.
    const measurement::SeriesKey& key() const { return key_; }

    /// The program with its unit, where that is known: "ASTRA 007 · 11778.0 / 10600 · dBuV".
    QString name() const;

    /// Adds a row; O(1). Rows may come out of order (a clock that was set back): settle() has to be
    /// called before the points are looked at.
    void add(const TrendPoint& point);

    /// Brings the rows added since the last call into their order of time; O(1) when they are.
    void settle();

    const TrendPoints& points() const { return points_; }

    /// The settled points summed up, the first TrendBlock::kPoints of them in the first block and
    /// so on; those that fill no block are in none.
    const std::vector<TrendBlock>& blocks() const { return blocks_; }

    /// The extremes of all rows; not measured when no row was.
    measurement::Reading minimum(measurement::Quantity quantity) const {
        return of(extremes_, quantity).minimum;
    }
    measurement::Reading maximum(measurement::Quantity quantity) const {
        return of(extremes_, quantity).maximum;
    }

    /// The value in the row that came last; not measured when that row holds none, whatever the
    /// rows before it say.
    measurement::Reading last(measurement::Quantity quantity) const {
        return last_.reading(quantity);
    }

    /// The longest time between two rows, in seconds, that is no pause: over four times the usual
    /// spacing of the rows. Without limit where all is joined, and until there are enough of them
    /// to tell what is usual.
    double longest_spacing() const;

  private:
    struct Extremes {
        measurement::Reading minimum;
        measurement::Reading maximum;
    };
    static const Extremes& of(const std::array<Extremes, measurement::kQuantities.size()>& all,
                              measurement::Quantity quantity) {
        return all[static_cast<std::size_t>(quantity)];
    }
    void count_spacing(double seconds);

    measurement::SeriesKey key_;
    bool joined_;
    TrendPoints points_;
    std::vector<TrendBlock> blocks_;
    std::size_t settled_ = 0;
    std::array<Extremes, measurement::kQuantities.size()> extremes_{};
    TrendPoint last_;
    /// How many spacings lie below 1, 2, 4, 8 ... seconds (and not below the one before).
    std::array<std::size_t, 32> spacings_{};
    std::size_t spacings_counted_ = 0;
};

}  // namespace m47::trend
