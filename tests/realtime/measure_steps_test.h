// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "measure_steps.h"

#include <QTest>

#include "realtime_fixture.h"

namespace m47::realtime {

/// The tick of the virtual clock's time of day, 10:00.
constexpr double kTick = 1 / 256.0;

/// A pause ends with the first reading of the clock beyond it, counted from the reading it began
/// at.
inline bool is_pause_of(double seconds, double found) {
    return found > seconds - kTick && found <= seconds + kTick;
}

inline const QByteArray kLabels[] = {"CHBER :", "PvBER :", "CFO   :", "MER   :"};
inline const QByteArray kFields[] = {" 2.0E-4", " <1.0E-8", " 1.25", " 12.3"};

/// The four lines of the meter's QPSK answer; `missing` leaves one out.
inline QByteArray qpsk_lines(int missing = -1) {
    QByteArrayList lines;
    for (int k = 0; k < 4; ++k)
        if (k != missing) lines += kLabels[k] + kFields[k];
    return lines.join('\r');
}

/// Each measurement step by itself: its commands, its label, its limit check.
class MeasureStepsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init() { f_ = std::make_unique<RealtimeFixture>(); }
    void cleanup() { f_.reset(); }

    void attenuator_data();
    void attenuator();
    void attenuator_pauses();
    void attenuator_in_another_unit_data();
    void attenuator_in_another_unit();
    void channel_power_data();
    void channel_power();
    void channel_power_is_shown_before_the_next_command();
    void channel_power_after_a_refusal_counts_0();
    void digital_cn_without_a_frequency_of_its_own();
    void digital_cn_data();
    void digital_cn();
    void digital_noise_without_a_frequency_of_its_own();
    void digital_noise();
    void digital_noise_without_a_line_end();
    void what_is_no_noise_frequency_is_corrected_before_it_is_sent();
    void a_noise_frequency_out_of_range_is_sent_as_the_nearest_bound();
    void qpsk_data();
    void qpsk();
    void qpsk_pauses();
    void qpsk_values_and_lamps();
    void qpsk_values_are_shown_one_by_one();
    void qpsk_label_missing_data();
    void qpsk_label_missing();
    void qpsk_unticked_label_may_be_missing();
    void qpsk_range_marks_data();
    void qpsk_range_marks();
    void analog_level_data();
    void analog_level();
    void analog_cn_without_a_frequency_of_its_own();
    void analog_cn_data();
    void analog_cn();
    void analog_noise_without_a_frequency_of_its_own();
    void analog_noise();
    void a_spoilt_answer_is_no_value_data();
    void a_spoilt_answer_is_no_value();
    void a_value_keeps_the_unit_that_the_meter_was_asked_in();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    MeasureSteps& steps() { return f_->rules.steps; }
    bool lamp_is(std::size_t lamp, LampColour colour);

    std::unique_ptr<RealtimeFixture> f_;
};

}  // namespace m47::realtime
