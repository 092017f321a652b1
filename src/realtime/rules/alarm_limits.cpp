// SPDX-License-Identifier: GPL-3.0-or-later
#include "alarm_limits.h"

#include <algorithm>

#include "numbers.h"

namespace m47::realtime {
namespace {

bool any(const auto& boxes) {
    return std::ranges::find(boxes, true) != boxes.end();
}

bool is_empty(const QString& limit) {
    return limit.trimmed().isEmpty();
}

/// Whether `limits` are looked at below and above.
std::pair<bool, bool> sides(const AlarmLimits& limits, EmptyLimits empty) {
    const bool all = empty == EmptyLimits::zero;
    return {all || limits.has_minimum, all || limits.has_maximum};
}

}  // namespace

AlarmLimits limits_of(AlarmRow row, const RealtimePanel& panel) {
    const Measure& measure = measure_of(row);
    const QString& minimum = panel.*measure.alarm->minimum.text;
    const QString& maximum = panel.*measure.alarm->maximum.text;
    return {is_alarm_ticked(measure, panel), link::typed_value(minimum), link::typed_value(maximum),
            !is_empty(minimum), !is_empty(maximum)};
}

std::optional<measurement::Limits> limits_in_force(AlarmRow row, const RealtimePanel& panel,
                                                   EmptyLimits empty) {
    const AlarmLimits set = limits_of(row, panel);
    const auto [below, above] = sides(set, empty);
    if (!set.enabled || (!below && !above)) return std::nullopt;
    measurement::Limits limits;
    if (below) limits.minimum = set.minimum;
    if (above) limits.maximum = set.maximum;
    return limits;
}

void check_limits(AlarmRow row, double value, RealtimePanel& panel, RealtimeState& state,
                  EmptyLimits empty) {
    const std::optional<measurement::Limits> limits = limits_in_force(row, panel, empty);
    if (!limits) return;
    const bool failed = !limits->hold(value);
    if (failed) state.alarm_raised = true;
    panel.alarm_light[static_cast<std::size_t>(row)] = failed ? LampColour::red : LampColour::green;
}

void clamp_analog_limits(RealtimePanel& panel, double offset, EmptyLimits empty) {
    const auto [lowest, highest] = programme::level_range(offset);
    const auto [below, above] = sides(limits_of(AlarmRow::level_analog, panel), empty);
    if (below && link::typed_value(panel.lev_mina) < lowest)
        panel.lev_mina = link::plain_text(lowest);
    if (below && link::typed_value(panel.lev_mina) > highest)
        panel.lev_mina = link::plain_text(highest);
    if (!above) return;
    const double minimum = link::typed_value(panel.lev_mina);
    if (below && minimum > link::typed_value(panel.lev_maxa))
        panel.lev_maxa = link::plain_text(minimum + 1);
    if (link::typed_value(panel.lev_maxa) > highest) panel.lev_maxa = link::plain_text(highest);
}

bool measure_activestate(const RealtimePanel& panel) {
    return any(panel.meas_stated) || any(panel.meas_statea);
}

bool alarm_activestate(const RealtimePanel& panel, EmptyLimits empty) {
    return std::ranges::any_of(
        kAlarmRows, [&](AlarmRow row) { return limits_in_force(row, panel, empty).has_value(); });
}

}  // namespace m47::realtime
