// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>

namespace m47::link {

/// The program's only source of time, so that a limit of 240 s is tested in milliseconds.
class Clock {
  public:
    virtual ~Clock() = default;

    /// Seconds since midnight in single precision: its resolution is the clock tick that paces the
    /// characters on the line.
    virtual float now() const = 0;

    /// Seconds until the reading of now() changes next, above 0.
    virtual double until_next_tick() const = 0;

    /// Sleeps for `seconds` (0 or more) without using the processor.
    virtual void sleep(double seconds) = 0;

    /// Date and time of day for rows and the screen's clock.
    virtual QDateTime date_time() const = 0;

    /// Seconds since some moment in the past. Nobody sets this clock: for intervals of any length.
    virtual double steady() const = 0;

    /// Between begin_span and end_span (nestable) readings only grow, past 86400 if need be.
    virtual void begin_span() {}
    virtual void end_span() {}
};

/// A transaction or a wait: its readings are disturbed neither by midnight nor by a clock set by
/// hand or by daylight saving.
class ClockSpan {
  public:
    explicit ClockSpan(Clock& clock) : clock_(clock) { clock_.begin_span(); }
    ~ClockSpan() { clock_.end_span(); }
    ClockSpan(const ClockSpan&) = delete;
    ClockSpan& operator=(const ClockSpan&) = delete;

  private:
    Clock& clock_;
};

}  // namespace m47::link
