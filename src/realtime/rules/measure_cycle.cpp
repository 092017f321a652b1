// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_cycle.h"

#include "commands.h"
#include "fault.h"
#include "measurement_row.h"

namespace m47 {

void MeasureCycle::measure(const std::function<void()>& prepare) {
    const Measuring measuring(link_);
    doubt_.clear();
    try {
        if (prepare) prepare();
        run_trapped();
    } catch (const DoubtfulAnswer& doubt) {
        doubt_ = QString::fromStdString(doubt.what());
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
    clamp_analog_limits(panel_, unit_offset(panel_.cmdlev));
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
}

void MeasureCycle::digital_cycle() {
    link_.send(command::kMeasure);
    tuning_.fsat_KeyPress(kEnterKey);
    tuning_.chbws_KeyPress(kEnterKey);
    if (panel_.meas_stated[kDcpLevel]) steps_.carr_satdig();
    if (panel_.meas_stated[kCnDigital]) steps_.cn_satdig();
    if (panel_.meas_stated[kNoiseDigital]) steps_.levn_satdig();
    steps_.qpsk_real();
}

void MeasureCycle::analog_cycle() {
    link_.send(command::kMeasure);
    tuning_.fsat_KeyPress(kEnterKey);
    if (panel_.meas_statea[kLevel]) steps_.carr_satanl();
    if (panel_.meas_statea[kCnAnalog]) steps_.cn_satanl();
    if (panel_.meas_statea[kNoiseAnalog]) steps_.levn_satanl();
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
    QString status;
    if (alarm_activestate(panel_))
        status = state_.alarm_raised ? QStringLiteral("FAIL") : QStringLiteral("PASS");
    const bool digital = state_.meas_mode == kDigitalMode;
    const QStringList row = measurement_row({
        .date_time = link_.clock().date_time(),
        .meas_mode = state_.meas_mode,
        .fsat = panel_.fsat,
        .ol_freq = panel_.ol_freq,
        .level = digital ? panel_.dcplev : panel_.leva,
        .ber = panel_.bercomune,
        .pvber = panel_.pvbercomune,
        .cfo = panel_.cfcomune,
        .mer = panel_.mercomune,
        .ru = panel_.rucomune,
        .status = status,
    });
    page_.append(row);
    if (on_row) on_row(page_.cells(page_.measurements() - 1));
    if (!log_.log_open()) return;
    // The row is on the page; a log that cannot be written loses its line without a message box.
    const bool written = log_.append(page_.store().line(page_.measurements() - 1));
    if (on_log_written) on_log_written(written ? QString() : log_.reason());
}

}  // namespace m47
