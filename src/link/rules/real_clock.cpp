// SPDX-License-Identifier: GPL-3.0-or-later
#include "real_clock.h"

#include <utility>

#include "clock_tick.h"

namespace m47::link {

using std::chrono::nanoseconds;

RealClock::RealClock(TimeOfDay time_of_day) : time_of_day_(std::move(time_of_day)) {}

nanoseconds RealClock::since_midnight() const {
    if (spans_ == 0) return time_of_day_();
    return span_time_of_day_ + (std::chrono::steady_clock::now() - span_begin_);
}

float RealClock::now() const {
    return tick_reading(since_midnight());
}

double RealClock::until_next_tick() const {
    return std::chrono::duration<double>(time_to_next_tick(since_midnight())).count();
}

void RealClock::sleep(double seconds) {
    if (seconds > 0) platform::sleep_whole(seconds);
}

QDateTime RealClock::date_time() const {
    return QDateTime::currentDateTime();
}

double RealClock::steady() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void RealClock::begin_span() {
    if (spans_ == 0) {
        span_time_of_day_ = time_of_day_();
        span_begin_ = std::chrono::steady_clock::now();
    }
    ++spans_;
}

void RealClock::end_span() {
    --spans_;
}

}  // namespace m47::link
