// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_data.h"

#include <algorithm>

namespace m47::trend {
namespace {

TrendPoint point_of(const measurement::Measurement& measurement) {
    TrendPoint point;
    point.time = *measurement.instant;
    point.status = measurement.verdict;
    for (std::size_t k = 0; k < measurement::kQuantities.size(); ++k) {
        const measurement::Reading& reading = measurement.reading(measurement::kQuantities[k]);
        point.values[k] = reading.value;
        point.marks[k] = reading.mark;
    }
    return point;
}

}  // namespace

void TrendData::update(const measurement::PageStore& page) {
    for (const int rows = page.rows(); rows_taken_ < rows; ++rows_taken_)
        take(page.measurement(rows_taken_, unit_));
    for (const auto& series : series_) series->settle();
}

void TrendData::add(std::span<const measurement::Measurement> more) {
    for (const measurement::Measurement& one : more) take(one);
    for (const auto& series : series_) series->settle();
}

void TrendData::take(const measurement::Measurement& measurement) {
    if (!measurement.instant || !measurement.frequency) return;
    const bool first = series_.empty();
    const std::size_t place = series_of(measurement::series_key(measurement));
    TrendPoint point = point_of(measurement);
    ++rows_;
    point.apart = left_out(place);
    last_rows_[place] = rows_;
    series_[place]->add(point);
    time_.lower = first ? point.time : std::min(time_.lower, point.time);
    time_.upper = first ? point.time : std::max(time_.upper, point.time);
    newest_ = point.time;
}

std::size_t TrendData::series_of(const measurement::SeriesKey& key) {
    // A program mostly follows itself, or the one it followed in the pass before.
    for (const std::size_t guess : {latest_series_, latest_series_ + 1})
        if (guess < series_.size() && series_[guess]->key() == key) return latest_series_ = guess;
    const auto [place, is_new] = places_.try_emplace(key, series_.size());
    if (is_new) {
        series_.push_back(std::make_unique<TrendSeries>(key, joined_));
        last_rows_.push_back(0);
    }
    return latest_series_ = place->second;
}

bool TrendData::left_out(std::size_t series) {
    // Every pass measures each program once. When another program has come twice since this one's
    // row before, a pass went by without it.
    const std::size_t row_before = last_rows_[series];
    const bool out = row_before > 0 && repeated_since_ > row_before;
    repeated_since_ = std::max(repeated_since_, row_before);
    return out;
}

}  // namespace m47::trend
