// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace m47::link {

/// The step of a clock that counts seconds since midnight in single precision, at the time
/// `since_midnight`: 1/512 s until 09:06, 1/256 s until 18:12, 1/128 s until 36:24. Never finer
/// than 1/512 s: shortly after midnight single precision would be so fine that the characters of a
/// command went out in a burst, which the meter cannot take.
std::chrono::nanoseconds clock_tick(std::chrono::nanoseconds since_midnight);

/// The reading of such a clock: the last whole tick, so that it never lies ahead of the time.
float tick_reading(std::chrono::nanoseconds since_midnight);

/// The time until that reading changes next, above 0.
std::chrono::nanoseconds time_to_next_tick(std::chrono::nanoseconds since_midnight);

}  // namespace m47::link
