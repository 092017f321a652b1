// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_data.h"

#include <algorithm>
#include <array>

namespace m47 {
namespace {

enum Column { kDate, kTime, kFrequency, kOscillator, kLevelCell, kBerCell, kMerCell = 8 };
constexpr std::size_t kStatusCell = PageStore::kColumns - 1;

using Cells = std::array<std::string_view, PageStore::kColumns>;

Cells cells_of(std::string_view line) {
    Cells cells;
    std::size_t start = 0;
    std::size_t place = 0;
    // The cells are a few characters long: looking at each is quicker than a search a cell.
    for (std::size_t k = 0; k < line.size() && place < kStatusCell; ++k) {
        if (line[k] != '\t') continue;
        cells[place++] = line.substr(start, k - start);
        start = k + 1;
    }
    cells[place] = line.substr(start);
    return cells;
}

/// The cells FR and OSC with the TAB that the line holds between them.
std::string_view key_of(const Cells& cells) {
    const char* const begin = cells[kFrequency].data();
    return {begin, static_cast<std::size_t>(cells[kOscillator].data() - begin) +
                       cells[kOscillator].size()};
}

RowStatus status_of(std::string_view cell) {
    if (cell == "FAIL") return RowStatus::fail;
    return cell == "PASS" ? RowStatus::pass : RowStatus::none;
}

TrendPoint point_of(double time, const Cells& cells) {
    constexpr std::array kCells{kLevelCell, kBerCell, kMerCell};
    TrendPoint point;
    point.time = time;
    point.status = status_of(cells[kStatusCell]);
    for (std::size_t k = 0; k < kQuantities.size(); ++k) {
        const Reading reading = reading_of(kQuantities[k], cells[kCells[k]]);
        point.values[k] = reading.value;
        point.marks[k] = reading.mark;
    }
    return point;
}

}  // namespace

void TrendData::update(const PageStore& page) {
    for (const int rows = page.rows(); rows_taken_ < rows; ++rows_taken_)
        take(page.line(rows_taken_));
    for (const auto& series : series_) series->settle();
}

void TrendData::take(std::string_view line) {
    const Cells cells = cells_of(line);
    const std::optional<double> time = time_of(cells[kDate], cells[kTime]);
    if (!time || cells[kFrequency].empty()) return;
    const bool first = series_.empty();
    const std::size_t place = series_of(key_of(cells));
    TrendPoint point = point_of(*time, cells);
    ++rows_;
    point.apart = left_out(place);
    last_rows_[place] = rows_;
    series_[place]->add(point);
    time_.lower = first ? *time : std::min(time_.lower, *time);
    time_.upper = first ? *time : std::max(time_.upper, *time);
    newest_ = *time;
}

std::optional<double> TrendData::time_of(std::string_view date, std::string_view time) {
    if (date != date_) {
        date_ = date;
        midnight_ = row_midnight(date);
    }
    const std::optional<double> clock = row_clock(time);
    if (!midnight_ || !clock) return {};
    return *midnight_ + *clock;
}

std::size_t TrendData::series_of(std::string_view key) {
    // A program mostly follows itself, or the one it followed in the pass before.
    for (const std::size_t guess : {latest_series_, latest_series_ + 1})
        if (guess < series_.size() && series_[guess]->key() == key) return latest_series_ = guess;
    const auto found = places_.find(key);
    if (found != places_.end()) return latest_series_ = found->second;
    series_.push_back(std::make_unique<TrendSeries>(key));
    last_rows_.push_back(0);
    latest_series_ = series_.size() - 1;
    places_.emplace(series_.back()->key(), latest_series_);
    return latest_series_;
}

bool TrendData::left_out(std::size_t series) {
    // Every pass measures each program once. When another program has come twice since this one's
    // row before, a pass went by without it.
    const std::size_t row_before = last_rows_[series];
    const bool out = row_before > 0 && repeated_since_ > row_before;
    repeated_since_ = std::max(repeated_since_, row_before);
    return out;
}

}  // namespace m47
