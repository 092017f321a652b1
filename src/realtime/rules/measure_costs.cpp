// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_costs.h"

#include <algorithm>

#include "numbers.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kLevelLost{"Level not kept: choose QPSK again",
                               "Livello non conservato: scegliere di nuovo QPSK"};
constexpr Bilingual kOtherBandwidth{
    "Bandwidth not that of the program: type it",
    "Larghezza di banda diversa da quella del programma: scriverla"};
constexpr Bilingual kEmptyFails{"An alarm without limits fails: give it limits",
                                "Un allarme senza limiti scatta: dargli dei limiti"};
constexpr Bilingual kEmptyIsNone{"An alarm without limits checks nothing",
                                 "Un allarme senza limiti non controlla nulla"};

}  // namespace

void MeasureCosts::begin() {
    // A cycle writes into empty limit boxes.
    lacking_.clear();
    std::ranges::copy_if(kAlarmRows, std::back_inserter(lacking_),
                         [this](AlarmRow row) { return lacks_limits(row); });
}

/// Of the frame that is shown: by default one empty box is enough to make an alarm fail.
bool MeasureCosts::lacks_limits(AlarmRow row) const {
    const bool digital = row < AlarmRow::level_analog;
    const AlarmLimits limits = limits_of(row, panel_);
    if (!limits.enabled || digital != panel_.satdigmea_visible) return false;
    if (program_.corrected.empty_alarm) return !limits.has_minimum && !limits.has_maximum;
    return !limits.has_minimum || !limits.has_maximum;
}

void MeasureCosts::end() {
    if (!link_.port_connected) return;
    tell_empty_alarms();
    tell_lost_level();
}

void MeasureCosts::tell_empty_alarms() {
    const bool failed = std::ranges::any_of(lacking_, [this](AlarmRow row) {
        return panel_.alarm_light[static_cast<std::size_t>(row)] == LampColour::red;
    });
    if (program_.corrected.empty_alarm && !lacking_.empty()) program_.costs.tell(kEmptyIsNone);
    if (!program_.corrected.empty_alarm && failed) program_.costs.tell(kEmptyFails);
}

void MeasureCosts::tell_lost_level() {
    // The cycle follows the frame that is shown, the row the mode.
    const bool analog_row = panel_.satdigmea_visible && state_.meas_mode == kAnalogMode;
    if (analog_row && !panel_.dcplev.trimmed().isEmpty()) program_.costs.tell(kLevelLost);
}

void MeasureCosts::tell_other_bandwidth() {
    if (!panel_.satdigmea_visible || !panel_.meas_stated[kDcpLevel]) return;
    const double mhz = modes_.bandwidth_of_program();
    const QString own = Tuning::checked_bandwidth(link::plain_text(mhz));
    if (mhz > 0 && own != Tuning::checked_bandwidth(panel_.chbws))
        program_.costs.tell(kOtherBandwidth);
}

}  // namespace m47::realtime
