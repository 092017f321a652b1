// SPDX-License-Identifier: GPL-3.0-or-later
#include "real_clock.h"

#include <cerrno>
#include <cmath>
#include <ctime>
#include <utility>

#include "clock_tick.h"

namespace m47 {

using std::chrono::nanoseconds;

nanoseconds local_time_of_day() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    tm local{};
    localtime_r(&time.tv_sec, &local);
    const std::chrono::seconds whole{(local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec};
    return whole + nanoseconds{time.tv_nsec};
}

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
    if (!(seconds > 0)) return;
    constexpr long kNanosecondsPerSecond = 1'000'000'000;
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    const double whole = std::floor(seconds);
    until.tv_sec += static_cast<time_t>(whole);
    until.tv_nsec += static_cast<long>(std::ceil((seconds - whole) * kNanosecondsPerSecond));
    if (until.tv_nsec >= kNanosecondsPerSecond) {
        until.tv_nsec -= kNanosecondsPerSecond;
        ++until.tv_sec;
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) continue;
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

}  // namespace m47
