// SPDX-License-Identifier: GPL-3.0-or-later
#include "virtual_clock.h"

#include <algorithm>
#include <cmath>

#include "clock_tick.h"

namespace m47 {
namespace {

using std::chrono::nanoseconds;

constexpr nanoseconds kDay = std::chrono::hours{24};

nanoseconds whole_nanoseconds(double seconds) {
    return nanoseconds{std::llround(seconds * 1e9)};
}

double seconds_of(nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

VirtualClock::VirtualClock(double seconds_since_midnight)
    : start_(whole_nanoseconds(seconds_since_midnight)) {}

nanoseconds VirtualClock::since_midnight() const {
    return (start_ + elapsed_) % kDay;
}

double VirtualClock::elapsed() const {
    return seconds_of(elapsed_);
}

float VirtualClock::now() const {
    return tick_reading(since_midnight());
}

double VirtualClock::until_next_tick() const {
    // At midnight the reading falls back to 0 and so changes too.
    const nanoseconds time = since_midnight();
    return seconds_of(std::min(time_to_next_tick(time), kDay - time));
}

void VirtualClock::sleep(double seconds) {
    // However short a wait is, time goes on.
    if (seconds > 0) elapsed_ += std::max(whole_nanoseconds(seconds), nanoseconds{1});
}

QDateTime VirtualClock::date_time() const {
    using std::chrono::milliseconds;
    const auto time = std::chrono::duration_cast<milliseconds>(since_midnight());
    return QDateTime(date_.addDays((start_ + elapsed_) / kDay),
                     QTime::fromMSecsSinceStartOfDay(static_cast<int>(time.count())));
}

}  // namespace m47
