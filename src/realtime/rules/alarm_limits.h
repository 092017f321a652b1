// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "measurement.h"
#include "measures.h"
#include "program_limits.h"
#include "realtime_panel.h"

namespace m47::realtime {

/// What the user has set for one value: it is within its limits above `minimum` and below
/// `maximum`, and is looked at only while `enabled`.
struct AlarmLimits {
    bool enabled;
    double minimum;
    double maximum;
    bool has_minimum = true;  ///< something stands in its box
    bool has_maximum = true;
};

/// What a limit box with nothing in it means: the number 0, or that there is no such limit.
enum class EmptyLimits { zero, none };

AlarmLimits limits_of(AlarmRow row, const RealtimePanel& panel);

/// The limits that a value of `row` is held against; nothing where none is.
std::optional<measurement::Limits> limits_in_force(AlarmRow row, const RealtimePanel& panel,
                                                   EmptyLimits empty);

/// Compares `value` with the limits of `row`, lights its lamp and raises `alarm_raised` on failure.
/// A value equal to a limit fails. A row whose alarm is not ticked or has no limit is left alone.
void check_limits(AlarmRow row, double value, RealtimePanel& panel, RealtimeState& state,
                  EmptyLimits empty = EmptyLimits::zero);

/// Brings the analog level limits into the meter's range, 20 to 120 dBuV seen in the unit that lies
/// `offset` dB below dBuV (0, 60 or 109), and writes corrected ones back.
void clamp_analog_limits(RealtimePanel& panel, double offset,
                         EmptyLimits empty = EmptyLimits::zero);

/// True when at least one measure (of either presentation) is ticked.
bool measure_activestate(const RealtimePanel& panel);

/// True when at least one alarm (of either presentation) is ticked and has a limit.
bool alarm_activestate(const RealtimePanel& panel, EmptyLimits empty = EmptyLimits::zero);

}  // namespace m47::realtime
