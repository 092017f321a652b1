// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>

#include "clock.h"
#include "system_time.h"

namespace m47::link {

/// The system's clock. Outside a span it reads the time of day; inside, the time of day at which
/// the outermost span began plus what has really passed since, so that neither midnight nor a
/// clock that is set meanwhile disturbs a transaction.
class RealClock : public Clock {
  public:
    using TimeOfDay = std::function<std::chrono::nanoseconds()>;

    explicit RealClock(TimeOfDay time_of_day = platform::local_time_of_day);

    float now() const override;
    double until_next_tick() const override;
    void sleep(double seconds) override;
    QDateTime date_time() const override;
    double steady() const override;
    void begin_span() override;
    void end_span() override;

  private:
    std::chrono::nanoseconds since_midnight() const;

    TimeOfDay time_of_day_;
    int spans_ = 0;
    std::chrono::nanoseconds span_time_of_day_{};
    std::chrono::steady_clock::time_point span_begin_;
};

}  // namespace m47::link
