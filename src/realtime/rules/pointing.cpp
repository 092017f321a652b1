// SPDX-License-Identifier: GPL-3.0-or-later
#include "pointing.h"

#include <cmath>
#include <utility>

#include "commands.h"
#include "fault.h"
#include "measures.h"
#include "numbers.h"
#include "work.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kOneAlone{"one value alone was being repeated, nothing of it is kept",
                              "si ripeteva un solo valore, nulla ne viene conservato"};

/// An attenuator step is 10 dB: behind half of one the meter may need another.
constexpr double kRangedFor = 5;

/// `panel` with `quantity` of its presentation ticked, its alarm as it was, and no more. The MER is
/// of the digital one whichever is shown.
RealtimePanel alone(RealtimePanel panel, measurement::Quantity quantity) {
    const auto digital_alarm = panel.alarm_stated;
    const auto analog_alarm = panel.alarm_statea;
    panel.on_repaint = nullptr;
    panel.meas_stated.fill(false);
    panel.meas_statea.fill(false);
    panel.alarm_stated.fill(false);
    panel.alarm_statea.fill(false);
    if (quantity == measurement::Quantity::mer) panel.satdigmea_visible = true;
    const bool digital = panel.satdigmea_visible;
    for (const Measure& measure : measures()) {
        const bool is_digital = measure.mode == measurement::MeasureMode::digital;
        if (measure.quantity != quantity || is_digital != digital) continue;
        (digital ? panel.meas_stated[measure.place] : panel.meas_statea[measure.place]) = true;
        if (!measure.alarm) continue;
        const std::size_t place = measure.alarm->place;
        if (digital)
            panel.alarm_stated[place] = digital_alarm[place];
        else
            panel.alarm_statea[place] = analog_alarm[place];
    }
    return panel;
}

measurement::ProgramIdentity program_shown(const RealtimePanel& panel) {
    if (!panel.plan_controls_visible) return {};
    return {panel.grp_name, panel.prog_num};
}

}  // namespace

Pointing::Pointing(RealtimeRules& rules, measurement::Quantity quantity)
    : rules_(rules),
      panel_(alone(rules.panel, quantity)),
      state_(rules.state),
      tuning_(rules.link, rules.program, panel_, state_),
      steps_(rules.link, rules.program, panel_, state_, tuning_),
      cycle_(rules.link, panel_, state_, tuning_, steps_, rules.page, rules.log),
      program_(program_shown(rules.panel)),
      quantity_(quantity),
      unit_(rules.link) {
    steps_.complete = true;
    steps_.cmdlev_Click = [this](int unit) {
        rules_.link.send(link::command::kUnit + link::format_number(unit, " 00"));
    };
}

std::optional<measurement::Measurement> Pointing::next() {
    const link::Work work(rules_.link, kOneAlone);
    if (ranged_at_)
        ask_again();
    else
        begin();
    const bool sure = measured() && !unit_changed();
    if (!sure || outgrown())
        ranged_at_.reset();
    else if (!ranged_at_)
        ranged_at_ = value();
    if (!sure) return std::nullopt;
    measurement::Measurement outcome = steps_.outcome;
    if (alarm_activestate(panel_, steps_.empty_limits()))
        outcome.verdict =
            state_.alarm_raised ? measurement::Verdict::fail : measurement::Verdict::pass;
    return outcome;
}

void Pointing::begin() {
    // Nobody watched the meter's keys before the first level.
    const bool first = !std::exchange(begun_, true);
    if (first && quantity_ == measurement::Quantity::level) static_cast<void>(unit_.changed());
    if (quantity_ != measurement::Quantity::mer) return cycle_.measure({}, program_);
    const link::Measuring measuring(rules_.link);
    steps_.outcome = measurement::Measurement();
    steps_.outcome.program = program_;
    steps_.outcome.mode = measurement::MeasureMode::digital;
    sure([this] { begin_mer(); });
}

/// The quality step of the cycle, but the meter stays in its QPSK mode.
void Pointing::begin_mer() {
    state_.alarm_raised = false;
    rules_.link.send(link::command::kMeasure);
    in_qpsk_ = true;
    steps_.start_qpsk();
    cycle_.tuned();
    steps_.digital_acquire();
}

/// The question of the cycle's step once more, where the meter still stands as that left it.
void Pointing::ask_again() {
    const link::Measuring measuring(rules_.link);
    steps_.outcome.reading(quantity_) = measurement::Reading();
    state_.alarm_raised = false;
    sure([this] { ask(); });
}

/// No value where `take` brings none that is sure; the next one begins with a whole cycle then.
void Pointing::sure(const std::function<void()>& take) {
    try {
        take();
    } catch (const DoubtfulAnswer&) {
        steps_.outcome.reading(quantity_) = measurement::Reading();
    } catch (const Fault&) {
        // What came before it in the answer stands.
        return;
    }
}

void Pointing::ask() {
    const bool digital = panel_.satdigmea_visible;
    switch (quantity_) {
        case measurement::Quantity::mer:
            return steps_.digital_acquire();
        case measurement::Quantity::cn:
            return digital ? steps_.ask_cn_satdig() : steps_.ask_cn_satanl();
        default:
            return digital ? steps_.level_satdig() : steps_.level_satanl();
    }
}

void Pointing::leave() noexcept {
    if (!in_qpsk_) return;
    in_qpsk_ = false;
    try {
        const link::InOrder in_order(rules_.link);
        if (rules_.link.can_send()) rules_.link.send(link::command::kMeasure);
    } catch (...) {
        // Told to end twice; the next user of the meter sets its mode.
    }
}

bool Pointing::measured() const {
    return rules_.link.port_connected && cycle_.doubt().isEmpty() && value().has_value();
}

/// True where a level has leapt because the meter tells it in another unit now.
bool Pointing::unit_changed() {
    if (quantity_ != measurement::Quantity::level) return false;
    if (unit_.changed_at(*value())) return true;
    unit_.begin();
    return false;
}

/// Analog levels are read behind the whole attenuator, which holds for all of them.
bool Pointing::outgrown() const {
    if (quantity_ != measurement::Quantity::level) return false;
    return panel_.satdigmea_visible && ranged_at_ && std::abs(*value() - *ranged_at_) > kRangedFor;
}

std::optional<double> Pointing::value() const {
    const measurement::Reading& reading = steps_.outcome.reading(quantity_);
    return reading.measured() ? std::optional(static_cast<double>(reading.value)) : std::nullopt;
}

}  // namespace m47::realtime
