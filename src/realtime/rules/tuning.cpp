// SPDX-License-Identifier: GPL-3.0-or-later
#include "tuning.h"

#include <algorithm>

#include "commands.h"
#include "numbers.h"
#include "oscillators.h"
#include "tuning_range.h"

namespace m47 {
namespace {

constexpr qsizetype kOscillatorLength = 6;

constexpr Bilingual kFrequencyLost{"Frequency not kept: type it again",
                                   "Frequenza non conservata: scriverla di nuovo"};

/// True where `text` is a number above 0 and nothing else.
bool is_frequency(const QString& text) {
    const auto foreign = [](QChar c) { return !c.isDigit() && c != u'.' && c != u','; };
    const QString typed = text.trimmed();
    return std::none_of(typed.begin(), typed.end(), foreign) && typed_value(typed) > 0;
}

QString clamped(const QString& text, double minimum, const char* below, double maximum,
                const char* above) {
    QString result = text;
    if (typed_value(result) < minimum) result = QString::fromLatin1(below);
    if (typed_value(result) > maximum) result = QString::fromLatin1(above);
    return result;
}

}  // namespace

QString Tuning::checked_frequency(const QString& text) const {
    const TuningRange range = tuning_range(panel_.locopt[0], typed_value(panel_.ol_freq));
    return format_freq(plain_text(inside_range(typed_value(text), range)));
}

void Tuning::fsat_KeyPress(int key) {
    if (key != kEnterKey) return;
    panel_.fsat = checked_frequency(panel_.fsat);
    panel_.repaint();
    link_.send(command::kFrequency + u' ' + panel_.fsat);
}

void Tuning::locopt_Click(int index) {
    if (!state_.recall_in_progress) {
        panel_.ol_freq_enabled = index == 1;
        if (index == 0) {
            link_.send(command::kNoOscillator);
        } else {
            // The option stores and selects oscillator "1 A"; the frequency box below has a form
            // of its own.
            const double oscillator = typed_value(panel_.ol_freq);
            link_.send(command::kOptionOscillator + format_number(oscillator, " 00000"));
            link_.send(command::kOptionOscillator);
        }
    }
    if (!link_.can_send()) return;
    show_answer(link_.ask(command::query(command::kFrequency)), panel_.fsat, kFrequencyLost);
}

void Tuning::show_answer(const std::optional<QString>& answer, QString& box,
                         const Bilingual& cost) {
    const bool lost = !answer || meter_value(*answer) <= 0;
    if (lost && program_.corrected.keep_box) return;
    box = answer.value_or(QString());
    if (lost) program_.costs.tell(cost);
}

void Tuning::ol_freq_KeyPress(int key) {
    if (key != kEnterKey) return;
    panel_.ol_freq =
        clamped(panel_.ol_freq, kOscillatorMinimum, "03070", kOscillatorMaximum, "12000")
            .left(kOscillatorLength);
    panel_.repaint();
    const QString digits = format_number(typed_value(panel_.ol_freq), "00000");
    link_.send(command::kBoxOscillator + digits);
    link_.send(command::kBoxOscillator);
    fsat_KeyPress(kEnterKey);
    panel_.noise_freqa = checked_frequency(panel_.noise_freqa);
    panel_.noise_freqd = checked_frequency(panel_.noise_freqd);
}

void Tuning::start_noise_boxes() {
    panel_.noise_freqa = panel_.noise_freqd = panel_.fsat;
}

QString Tuning::noise_frequency(QString& entry) const {
    if (!is_frequency(entry)) entry = panel_.fsat;
    return checked_frequency(entry);
}

void Tuning::send_supply(int volts) {
    if (volts == 0) {
        link_.send(command::kSupplyOff);
        return;
    }
    // The voltage goes first, so that the supply never comes up at the one set before.
    link_.send(command::kSupplyVoltage + format_number(volts, " 00"));
    link_.send(command::kSupplyOn);
}

void Tuning::satlnb_state_Click(int index) {
    constexpr std::array<int, 3> kVolts{0, 13, 18};
    if (state_.recall_in_progress || index < 0 || index >= static_cast<int>(kVolts.size())) return;
    send_supply(kVolts[static_cast<std::size_t>(index)]);
}

void Tuning::lnb_supply_Click(int index) {
    constexpr std::array<int, 5> kVolts{0, 13, 15, 18, 24};
    if (state_.recall_in_progress || index < 0 || index >= static_cast<int>(kVolts.size())) return;
    send_supply(kVolts[static_cast<std::size_t>(index)]);
}

int Tuning::list_Click(const QString& word, int index, int count) {
    if (state_.recall_in_progress) return index;
    link_.send(word + format_number(index, " 00"));
    const std::optional<QString> answer = link_.ask(word + u'?');
    if (!answer) return index;
    const double accepted = meter_value(*answer);
    return accepted >= 0 && accepted < count ? static_cast<int>(accepted) : index;
}

void Tuning::k22_state_Click(int index) {
    if (state_.recall_in_progress) return;
    if (index == 0) link_.send(command::kToneOn);
    if (index == 1) link_.send(command::kToneOff);
}

void Tuning::srqpsk_txt_KeyPress(int key) {
    if (key != kEnterKey) return;
    const QString rate =
        clamped(panel_.srqpsk_txt, kSymbolRateMinimum, "1500", kSymbolRateMaximum, "45000");
    panel_.srqpsk_txt = format_number(typed_value(rate), "00000");
    panel_.repaint();
    link_.send(command::kSymbolRate + u' ' + panel_.srqpsk_txt);
}

QString Tuning::checked_bandwidth(const QString& text) {
    const QString bandwidth = clamped(text, kBandwidthMinimum, "5", kBandwidthMaximum, "36");
    return format_number(typed_value(bandwidth), "00");
}

void Tuning::chbws_KeyPress(int key) {
    if (key != kEnterKey) return;
    panel_.chbws = checked_bandwidth(panel_.chbws);
    panel_.repaint();
    link_.send(command::kBandwidth + u' ' + panel_.chbws);
}

}  // namespace m47
