// SPDX-License-Identifier: GPL-3.0-or-later
#include "append_times.h"

namespace m47::publish {
namespace {

constexpr double kCloseTogether = 10;  // seconds

}  // namespace

void AppendTimes::note(qint64 milliseconds, double steady) {
    const bool running = !times_.empty() && times_.back().steady;
    if (!running || steady - *times_.back().steady >= kCloseTogether)
        times_.push_back({milliseconds, steady});
}

void AppendTimes::end(qint64 milliseconds) {
    if (!times_.empty() && times_.back().steady) times_.push_back({milliseconds, std::nullopt});
}

std::optional<double> AppendTimes::of(qint64 milliseconds) {
    // Those before the one that has it were delivered.
    while (times_.size() > 1 && times_[1].milliseconds <= milliseconds) times_.pop_front();
    if (times_.empty() || times_.front().milliseconds > milliseconds) return std::nullopt;
    return times_.front().steady;
}

}  // namespace m47::publish
