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
    const nanoseconds time = (start_ + elapsed_ + set_) % kDay;
    return time < nanoseconds{} ? time + kDay : time;
}

void VirtualClock::begin_span() {
    if (spans_++ > 0) return;
    span_reading_ = since_midnight();
    span_begin_ = elapsed_;
}

nanoseconds VirtualClock::reading() const {
    return spans_hold && spans_ > 0 ? span_reading_ + elapsed_ - span_begin_ : since_midnight();
}

void VirtualClock::set_by(double seconds) {
    set_ += whole_nanoseconds(seconds);
}

double VirtualClock::elapsed() const {
    return seconds_of(elapsed_);
}

float VirtualClock::now() const {
    return link::tick_reading(reading());
}

double VirtualClock::until_next_tick() const {
    // At midnight the reading falls back to 0 and so changes too.
    const nanoseconds time = reading();
    if (spans_hold && spans_ > 0) return seconds_of(link::time_to_next_tick(time));
    return seconds_of(std::min(link::time_to_next_tick(time), kDay - time));
}

void VirtualClock::sleep(double seconds) {
    // However short a wait is, time goes on.
    if (seconds > 0) elapsed_ += std::max(whole_nanoseconds(seconds), nanoseconds{1});
}

QDateTime VirtualClock::date_time() const {
    using std::chrono::milliseconds;
    const auto time = std::chrono::duration_cast<milliseconds>(since_midnight());
    const nanoseconds all = start_ + elapsed_ + set_;
    const auto days = all / kDay - (all % kDay < nanoseconds{} ? 1 : 0);
    return QDateTime(date_.addDays(days),
                     QTime::fromMSecsSinceStartOfDay(static_cast<int>(time.count())));
}

}  // namespace m47
