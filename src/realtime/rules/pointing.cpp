// SPDX-License-Identifier: GPL-3.0-or-later
#include "pointing.h"

#include <cmath>

#include "commands.h"
#include "fault.h"
#include "numbers.h"
#include "work.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kLevelAlone{"the level alone was being repeated, nothing of it is kept",
                                "si ripeteva il solo livello, nulla ne viene conservato"};

/// An attenuator step is 10 dB: behind half of one the meter may need another.
constexpr double kRangedFor = 5;

/// `panel` with the level of its presentation ticked, its alarm as it was, and no more.
RealtimePanel level_alone(RealtimePanel panel) {
    const bool digital = panel.satdigmea_visible;
    const bool digital_alarm = panel.alarm_stated[0];
    const bool analog_alarm = panel.alarm_statea[0];
    panel.on_repaint = nullptr;
    panel.meas_stated.fill(false);
    panel.meas_statea.fill(false);
    panel.alarm_stated.fill(false);
    panel.alarm_statea.fill(false);
    panel.meas_stated[kDcpLevel] = digital;
    panel.meas_statea[kLevel] = !digital;
    panel.alarm_stated[0] = digital && digital_alarm;
    panel.alarm_statea[0] = !digital && analog_alarm;
    return panel;
}

measurement::ProgramIdentity program_shown(const RealtimePanel& panel) {
    if (!panel.plan_controls_visible) return {};
    return {panel.grp_name, panel.prog_num};
}

}  // namespace

Pointing::Pointing(RealtimeRules& rules)
    : rules_(rules),
      panel_(level_alone(rules.panel)),
      state_(rules.state),
      tuning_(rules.link, rules.program, panel_, state_),
      steps_(rules.link, rules.program, panel_, state_, tuning_),
      cycle_(rules.link, panel_, state_, tuning_, steps_, rules.page, rules.log),
      program_(program_shown(rules.panel)) {
    steps_.cmdlev_Click = [this](int unit) {
        rules_.link.send(link::command::kUnit + link::format_number(unit, " 00"));
    };
}

std::optional<measurement::Measurement> Pointing::next() {
    const link::Work work(rules_.link, kLevelAlone);
    if (ranged_at_)
        ask_again();
    else
        cycle_.measure({}, program_);
    const bool sure = measured();
    if (!sure || outgrown())
        ranged_at_.reset();
    else if (!ranged_at_)
        ranged_at_ = level();
    if (!sure) return std::nullopt;
    measurement::Measurement outcome = steps_.outcome;
    if (alarm_activestate(panel_, steps_.empty_limits()))
        outcome.verdict =
            state_.alarm_raised ? measurement::Verdict::fail : measurement::Verdict::pass;
    return outcome;
}

/// The question of the cycle's level step once more, where the meter still stands as that left it.
void Pointing::ask_again() {
    const link::Measuring measuring(rules_.link);
    steps_.outcome.reading(measurement::Quantity::level) = measurement::Reading();
    state_.alarm_raised = false;
    try {
        if (panel_.satdigmea_visible)
            steps_.level_satdig();
        else
            steps_.level_satanl();
    } catch (const DoubtfulAnswer&) {
        steps_.outcome.reading(measurement::Quantity::level) = measurement::Reading();
    } catch (const Fault&) {
        // No level; the next one begins with a whole cycle.
        return;
    }
}

bool Pointing::measured() const {
    return rules_.link.port_connected && cycle_.doubt().isEmpty() && level().has_value();
}

/// Analog levels are read behind the whole attenuator, which holds for all of them.
bool Pointing::outgrown() const {
    return panel_.satdigmea_visible && ranged_at_ && std::abs(*level() - *ranged_at_) > kRangedFor;
}

std::optional<double> Pointing::level() const {
    const measurement::Reading& reading = steps_.outcome.reading(measurement::Quantity::level);
    return reading.measured() ? std::optional(static_cast<double>(reading.value)) : std::nullopt;
}

}  // namespace m47::realtime
