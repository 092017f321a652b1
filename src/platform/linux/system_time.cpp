// SPDX-License-Identifier: GPL-3.0-or-later
#include "system_time.h"

#include <time.h>

#include <cerrno>
#include <cmath>

namespace m47::platform {

std::chrono::nanoseconds local_time_of_day() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    tm local{};
    localtime_r(&time.tv_sec, &local);
    const std::chrono::seconds whole{(local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec};
    return whole + std::chrono::nanoseconds{time.tv_nsec};
}

void sleep_whole(double seconds) {
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

}  // namespace m47::platform
