// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_cycle.h"

#include "commands.h"
#include "enter_key.h"
#include "fault.h"
#include "measurement_row.h"
#include "measures.h"
#include "row_time.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kTuning{"Tuning the meter…", "Sintonia dello strumento…"};
constexpr Bilingual kLevelStep{"Measuring the level…", "Misura del livello…"};
constexpr Bilingual kCnStep{"Measuring C/N…", "Misura di C/N…"};
constexpr Bilingual kNoiseStep{"Measuring the noise…", "Misura del rumore…"};
constexpr Bilingual kQualityStep{"Measuring %1…", "Misura di %1…"};

}  // namespace

void MeasureCycle::measure(const std::function<void()>& prepare,
                           const measurement::ProgramIdentity& program) {
    const link::Measuring measuring(link_);
    doubt_.clear();
    steps_.outcome = measurement::Measurement();
    steps_.outcome.program = program;
    try {
        if (prepare) prepare();
        run_trapped();
    } catch (const DoubtfulAnswer& doubt) {
        doubt_ = QString::fromStdString(doubt.command());
    }
    panel_.repaint();
}

void MeasureCycle::run_trapped() {
    try {
        run_cycle();
    } catch (const DoubtfulAnswer&) {
        throw;
    } catch (const Fault&) {
        // A step that cannot go on ends the cycle; what was measured before it counts.
    }
}

void MeasureCycle::run_cycle() {
    state_.cn_done = false;
    state_.alarm_raised = false;
    panel_.alarm_light.fill(LampColour::grey);
    if (!link_.port_connected || !measure_activestate(panel_)) return;
    clamp_analog_limits(panel_, unit_offset(panel_.cmdlev), steps_.empty_limits());
    blank_results();
    panel_.repaint();
    if (panel_.satdigmea_visible)
        digital_cycle();
    else
        analog_cycle();
}

void MeasureCycle::blank_results() {
    const QString eight(8, u' ');
    const QString six(6, u' ');
    panel_.leva = panel_.cnalev = panel_.noisealev = eight;
    panel_.dcplev = panel_.cndlev = panel_.noisedlev = eight;
    panel_.bercomune = panel_.pvbercomune = panel_.cfcomune = six;
    panel_.mercomune = panel_.rucomune = six;
    panel_.results_of_before = false;
}

void MeasureCycle::tuned() {
    const auto mhz = [](std::optional<double> value) {
        return value ? std::optional(static_cast<float>(*value)) : std::nullopt;
    };
    steps_.outcome.frequency = mhz(link_.settings.frequency());
    steps_.outcome.oscillator = mhz(link_.settings.oscillator());
    steps_.outcome.unit = measurement::unit_of_index(link_.settings.unit());
    panel_.level_unit = measurement::unit_text(steps_.outcome.unit);
}

void MeasureCycle::digital_cycle() {
    steps_.outcome.mode = measurement::MeasureMode::digital;
    link_.activity.say({kTuning, {}});
    link_.send(link::command::kMeasure);
    tuning_.fsat_KeyPress(kEnterKey);
    tuned();
    tuning_.chbws_KeyPress(kEnterKey);
    step(panel_.meas_stated[kDcpLevel], kLevelStep, &MeasureSteps::carr_satdig);
    step(panel_.meas_stated[kCnDigital], kCnStep, &MeasureSteps::cn_satdig);
    step(panel_.meas_stated[kNoiseDigital], kNoiseStep, &MeasureSteps::levn_satdig);
    tell_quality();
    steps_.qpsk_real();
}

void MeasureCycle::step(bool ticked, const Bilingual& words, void (MeasureSteps::*take)()) {
    if (!ticked) return;
    link_.activity.say({words, {}});
    (steps_.*take)();
}

/// One answer of the meter holds all of these.
void MeasureCycle::tell_quality() const {
    QStringList names;
    for (const Measure& measure : measures())
        if (measure.label && is_ticked(measure, panel_))
            names += QString::fromLatin1(measure.label).section(u':', 0, 0).trimmed();
    if (!names.isEmpty()) link_.activity.say({kQualityStep, {names.join(QStringLiteral(", "))}});
}

void MeasureCycle::analog_cycle() {
    steps_.outcome.mode = measurement::MeasureMode::analog;
    link_.activity.say({kTuning, {}});
    link_.send(link::command::kMeasure);
    tuning_.fsat_KeyPress(kEnterKey);
    tuned();
    step(panel_.meas_statea[kLevel], kLevelStep, &MeasureSteps::carr_satanl);
    step(panel_.meas_statea[kCnAnalog], kCnStep, &MeasureSteps::cn_satanl);
    step(panel_.meas_statea[kNoiseAnalog], kNoiseStep, &MeasureSteps::levn_satanl);
}

void MeasureCycle::storemeas() {
    if (!link_.port_connected || !measure_activestate(panel_)) return;
    if (!doubt_.isEmpty()) {
        if (on_doubt) on_doubt(doubt_);
        return;
    }
    try {
        write_row();
    } catch (const Fault&) {
        // Ends silently; what is on the page stays.
    }
}

void MeasureCycle::write_row() {
    const QDateTime now = link_.clock().date_time();
    measurement::Measurement& outcome = steps_.outcome;
    outcome.instant = measurement::row_instant(now);
    if (alarm_activestate(panel_, steps_.empty_limits()))
        outcome.verdict =
            state_.alarm_raised ? measurement::Verdict::fail : measurement::Verdict::pass;
    const bool digital = state_.meas_mode == kDigitalMode;
    const QStringList row = measurement::measurement_row({
        .date_time = now,
        .meas_mode = state_.meas_mode,
        .fsat = panel_.fsat,
        .ol_freq = panel_.ol_freq,
        .level = digital ? panel_.dcplev : panel_.leva,
        .ber = panel_.bercomune,
        .pvber = panel_.pvbercomune,
        .cfo = panel_.cfcomune,
        .mer = panel_.mercomune,
        .ru = panel_.rucomune,
        .status = measurement::verdict_text(outcome.verdict),
    });
    page_.append(row, outcome);
    if (before_row) before_row(outcome, page_.store().line(page_.measurements() - 1), now);
    // The log comes first: who reads the rows may hold them up.
    if (log_.log_open()) log_row();
    if (on_measured) on_measured(outcome);
    if (on_row) on_row(page_.cells(page_.measurements() - 1));
}

void MeasureCycle::log_row() {
    // The row is on the page; a log that cannot be written loses its line without a message box.
    const bool written = log_.append(page_.store().line(page_.measurements() - 1));
    if (on_log_written) on_log_written(written ? QString() : log_.reason());
}

}  // namespace m47::realtime
