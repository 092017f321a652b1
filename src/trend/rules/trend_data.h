// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "page_store.h"
#include "trend_series.h"

namespace m47::trend {

/// A stretch of an axis, `lower` not above `upper`: seconds since 1970 on the clock of the
/// rows, or a quantity.
struct TrendRange {
    double lower = 0;
    double upper = 0;

    double span() const { return upper - lower; }
};

/// The limits between which a quantity is good, where it has any now; a side without one is
/// infinite.
using TrendLimits = std::function<std::optional<TrendRange>(measurement::Quantity)>;

/// The measurements of the page as one series a program of a plan; of those without a plan, and of
/// a log that came back, one a frequency and oscillator. Each unit has series of its own.
class TrendData {
  public:
    /// Rows that do not tell their unit are in `unit`.
    /// With `joined` no pause breaks a line: visits lie as far apart as they do.
    explicit TrendData(std::optional<LevelUnit> unit = {}, bool joined = false)
        : unit_(unit), joined_(joined) {}

    /// Takes what `page` has gained since the last call; O(1) a row. Rows without a date and time,
    /// or without a frequency, have no place on the trend and are left out.
    void update(const measurement::PageStore& page);

    /// Takes `more` behind what it has.
    void add(std::span<const measurement::Measurement> more);

    /// Forgets everything: the page begins anew.
    void clear() { *this = TrendData(unit_, joined_); }

    bool empty() const { return series_.empty(); }

    /// The programs in the order in which they first came.
    const std::vector<std::unique_ptr<TrendSeries>>& series() const { return series_; }

    /// From the earliest to the latest row; only when not empty().
    TrendRange time() const { return time_; }

    /// The time of the row that came last, which a clock that was set back makes not the latest.
    double newest() const { return newest_; }

  private:
    void take(const measurement::Measurement& measurement);
    std::size_t series_of(const measurement::SeriesKey& key);
    bool left_out(std::size_t series);

    std::optional<LevelUnit> unit_;
    bool joined_;
    int rows_taken_ = 0;
    std::vector<std::unique_ptr<TrendSeries>> series_;
    std::unordered_map<measurement::SeriesKey, std::size_t, measurement::SeriesKeyHash> places_;
    std::vector<std::size_t> last_rows_;  ///< of each series: the number of its latest row, from 1
    std::size_t rows_ = 0;
    std::size_t repeated_since_ = 0;
    std::size_t latest_series_ = 0;
    TrendRange time_;
    double newest_ = 0;
};

}  // namespace m47::trend
