// SPDX-License-Identifier: GPL-3.0-or-later
#include "fine_sleep.h"

#include <time.h>

namespace meter {

void sleep_until(std::chrono::steady_clock::time_point when) {
    const auto time = when.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    timespec target{};
    target.tv_sec = seconds.count();
    target.tv_nsec = std::chrono::nanoseconds(time - seconds).count();
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &target, nullptr);
}

}  // namespace meter
