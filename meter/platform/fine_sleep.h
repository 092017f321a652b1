// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace meter {

/// Sleeps to a point of the monotonic clock, so that late wake-ups do not add up. A signal may end
/// it sooner.
void sleep_until(std::chrono::steady_clock::time_point when);

}  // namespace meter
