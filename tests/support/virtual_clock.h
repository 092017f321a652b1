// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

#include "clock.h"

namespace m47 {

/// A clock that stands still until somebody waits on it. Its date and its seconds since midnight
/// go on together; at midnight the seconds wrap to 0, as a raw time-of-day clock does. Where
/// `spans_hold` neither midnight nor a clock that is set disturbs a reading within a span.
class VirtualClock : public link::Clock {
  public:
    explicit VirtualClock(double seconds_since_midnight = 36000.0);

    float now() const override;
    double until_next_tick() const override;
    void sleep(double seconds) override;
    QDateTime date_time() const override;
    double steady() const override { return elapsed(); }

    bool spans_hold = false;
    void begin_span() override;
    void end_span() override { --spans_; }

    /// Somebody sets the clock forward (or back, below 0) by so many seconds.
    void set_by(double seconds);

    /// Exact virtual seconds since the clock was made.
    double elapsed() const;
    void set_date(const QDate& date) { date_ = date; }

  private:
    /// The time of day as the clock is set.
    std::chrono::nanoseconds since_midnight() const;
    /// What is read: in a span it goes on past midnight and is not set.
    std::chrono::nanoseconds reading() const;

    std::chrono::nanoseconds start_;
    std::chrono::nanoseconds elapsed_{};
    std::chrono::nanoseconds set_{};
    std::chrono::nanoseconds span_reading_{};  ///< when the outermost span began
    std::chrono::nanoseconds span_begin_{};
    int spans_ = 0;
    QDate date_{2026, 11, 21};
};

}  // namespace m47
