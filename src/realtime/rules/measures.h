// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "ask_twice.h"
#include "measurement.h"
#include "program_record.h"
#include "realtime_panel.h"

namespace m47::realtime {

/// The values that have limits; the index is that of the lamp in `alarm_light`.
enum class AlarmRow { dcp_level, cn_digital, chber, mer, level_analog, cn_analog };
inline constexpr std::array kAlarmRows{AlarmRow::dcp_level,    AlarmRow::cn_digital,
                                       AlarmRow::chber,        AlarmRow::mer,
                                       AlarmRow::level_analog, AlarmRow::cn_analog};

/// A control and what its tooltip says; nullptr for what has none in that language.
struct MeasureControl {
    const char* name;
    const char* english;
    const char* italian;
};

/// The box of a limit, the keys that it accepts besides Backspace (others are swallowed), its
/// member of the panel and the one of a program of a plan that it is recalled from.
struct LimitBox {
    MeasureControl control;
    const char* accepted;
    QString RealtimePanel::*text;
    QString programme::ProgramRecord::*stored;
};

/// The alarm of a measure: its place in the array of check boxes of its presentation.
struct MeasureAlarm {
    AlarmRow row;
    std::size_t place;
    MeasureControl box;
    LimitBox minimum;
    LimitBox maximum;
};

/// What can be ticked to be measured.
struct Measure {
    measurement::MeasureMode mode;
    std::optional<measurement::Quantity> quantity;  ///< what is kept of it
    std::size_t place;  ///< in the array of check boxes of its presentation
    MeasureControl box;
    const char* result;  ///< the label that shows it, and what it shows
    QString RealtimePanel::*shown;
    std::optional<measurement::AskedFor> asked;  ///< what the meter is asked for it
    const char* label = nullptr;                 ///< before it in an answer that holds several
    std::optional<MeasureAlarm> alarm = {};      ///< where it has limits
};

/// All of them, in the order in which the screen lists them: the digital ones, then the analog.
std::span<const Measure> measures();

/// The one whose alarm is `row`.
const Measure& measure_of(AlarmRow row);

/// True where the check box of `measure`, or of its alarm, is ticked.
bool is_ticked(const Measure& measure, const RealtimePanel& panel);
bool is_alarm_ticked(const Measure& measure, const RealtimePanel& panel);

/// The boxes of all limits.
std::vector<LimitBox> limit_boxes();

}  // namespace m47::realtime
