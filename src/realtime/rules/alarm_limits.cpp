// SPDX-License-Identifier: GPL-3.0-or-later
#include "alarm_limits.h"

#include <algorithm>

#include "numbers.h"

namespace m47 {
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
    const auto limits = [](bool enabled, const QString& minimum, const QString& maximum) {
        return AlarmLimits{enabled, typed_value(minimum), typed_value(maximum), !is_empty(minimum),
                           !is_empty(maximum)};
    };
    switch (row) {
        case AlarmRow::dcp_level:
            return limits(panel.alarm_stated[0], panel.lev_mind, panel.lev_maxd);
        case AlarmRow::cn_digital:
            return limits(panel.alarm_stated[1], panel.cn_mind, panel.cn_maxd);
        case AlarmRow::chber:
            return limits(panel.alarm_stated[2], panel.chber_mind, panel.chber_maxd);
        case AlarmRow::mer:
            return limits(panel.alarm_stated[3], panel.mer_mind, panel.mer_maxd);
        case AlarmRow::level_analog:
            return limits(panel.alarm_statea[0], panel.lev_mina, panel.lev_maxa);
        case AlarmRow::cn_analog:
            break;
    }
    return limits(panel.alarm_statea[1], panel.cn_mina, panel.cn_maxa);
}

std::optional<Limits> limits_in_force(AlarmRow row, const RealtimePanel& panel, EmptyLimits empty) {
    const AlarmLimits set = limits_of(row, panel);
    const auto [below, above] = sides(set, empty);
    if (!set.enabled || (!below && !above)) return std::nullopt;
    Limits limits;
    if (below) limits.minimum = set.minimum;
    if (above) limits.maximum = set.maximum;
    return limits;
}

void check_limits(AlarmRow row, double value, RealtimePanel& panel, RealtimeState& state,
                  EmptyLimits empty) {
    const std::optional<Limits> limits = limits_in_force(row, panel, empty);
    if (!limits) return;
    const bool failed = (limits->minimum && value <= *limits->minimum) ||
                        (limits->maximum && value >= *limits->maximum);
    if (failed) state.alarm_raised = true;
    panel.alarm_light[static_cast<std::size_t>(row)] = failed ? LampColour::red : LampColour::green;
}

void clamp_analog_limits(RealtimePanel& panel, double offset, EmptyLimits empty) {
    const auto [lowest, highest] = level_range(offset);
    const auto [below, above] = sides(limits_of(AlarmRow::level_analog, panel), empty);
    if (below && typed_value(panel.lev_mina) < lowest) panel.lev_mina = plain_text(lowest);
    if (below && typed_value(panel.lev_mina) > highest) panel.lev_mina = plain_text(highest);
    if (!above) return;
    const double minimum = typed_value(panel.lev_mina);
    if (below && minimum > typed_value(panel.lev_maxa)) panel.lev_maxa = plain_text(minimum + 1);
    if (typed_value(panel.lev_maxa) > highest) panel.lev_maxa = plain_text(highest);
}

bool measure_activestate(const RealtimePanel& panel) {
    return any(panel.meas_stated) || any(panel.meas_statea);
}

bool alarm_activestate(const RealtimePanel& panel, EmptyLimits empty) {
    return std::ranges::any_of(
        kAlarmRows, [&](AlarmRow row) { return limits_in_force(row, panel, empty).has_value(); });
}

}  // namespace m47
