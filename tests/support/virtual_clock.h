// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

#include "clock.h"

namespace m47 {

/// A clock that stands still until somebody waits on it. Its date and its seconds since midnight
/// go on together; at midnight the seconds wrap to 0, as a raw time-of-day clock does.
class VirtualClock : public Clock {
  public:
    explicit VirtualClock(double seconds_since_midnight = 36000.0);

    float now() const override;
    double until_next_tick() const override;
    void sleep(double seconds) override;
    QDateTime date_time() const override;
    double steady() const override { return elapsed(); }

    /// Exact virtual seconds since the clock was made.
    double elapsed() const;
    void set_date(const QDate& date) { date_ = date; }

  private:
    std::chrono::nanoseconds since_midnight() const;

    std::chrono::nanoseconds start_;
    std::chrono::nanoseconds elapsed_{};
    QDate date_{2026, 11, 21};
};

}  // namespace m47
