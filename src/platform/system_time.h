// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace m47::platform {

/// The time of day on this machine's own clock, since local midnight.
std::chrono::nanoseconds local_time_of_day();

/// Sleeps `seconds` (0 or more) on the clock that nobody sets, no less, whatever signals come.
void sleep_whole(double seconds);

}  // namespace m47::platform
