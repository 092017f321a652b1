// SPDX-License-Identifier: GPL-3.0-or-later
#include "clock_tick.h"

namespace m47::link {

using std::chrono::nanoseconds;

nanoseconds clock_tick(nanoseconds since_midnight) {
    // 24 bits of mantissa: below 2^15 s single precision is at least as fine as 2^-9 s, and each
    // doubling of the time makes it coarser by one bit. All these steps are whole nanoseconds.
    nanoseconds tick{1'953'125};
    for (nanoseconds bound = std::chrono::seconds{32'768}; since_midnight >= bound; bound *= 2)
        tick *= 2;
    return tick;
}

float tick_reading(nanoseconds since_midnight) {
    const nanoseconds tick = clock_tick(since_midnight);
    const nanoseconds reading = since_midnight - since_midnight % tick;
    return static_cast<float>(std::chrono::duration<double>(reading).count());
}

nanoseconds time_to_next_tick(nanoseconds since_midnight) {
    const nanoseconds tick = clock_tick(since_midnight);
    return tick - since_midnight % tick;
}

}  // namespace m47::link
