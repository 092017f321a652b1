// SPDX-License-Identifier: GPL-3.0-or-later
#include "tuning.h"

#include <algorithm>
#include <cmath>

#include "commands.h"
#include "enter_key.h"
#include "numbers.h"
#include "oscillators.h"
#include "tuning_range.h"

namespace m47::realtime {
namespace {

constexpr qsizetype kOscillatorLength = 6;
constexpr double kSymbolRateOfMega = 1000;  // kS/s of 1 MS/s
/// By the entry of the list of the LNB.
constexpr std::array<int, 3> kLnbVolts{0, 13, 18};

constexpr Bilingual kFrequencyLost{"Frequency not kept: type it again",
                                   "Frequenza non conservata: scriverla di nuovo"};

/// True where `text` is a number above 0 and nothing else.
bool is_frequency(const QString& text) {
    const auto foreign = [](QChar c) { return !c.isDigit() && c != u'.' && c != u','; };
    const QString typed = text.trimmed();
    return std::none_of(typed.begin(), typed.end(), foreign) && link::typed_value(typed) > 0;
}

QString clamped(const QString& text, double minimum, const char* below, double maximum,
                const char* above) {
    QString result = text;
    if (link::typed_value(result) < minimum) result = QString::fromLatin1(below);
    if (link::typed_value(result) > maximum) result = QString::fromLatin1(above);
    return result;
}

}  // namespace

QString Tuning::checked_frequency(const QString& text) const {
    const programme::TuningRange range =
        programme::tuning_range(panel_.locopt[0], link::typed_value(panel_.ol_freq));
    return link::format_freq(
        link::plain_text(programme::inside_range(link::typed_value(text), range)));
}

void Tuning::fsat_KeyPress(int key) {
    if (key != kEnterKey) return;
    panel_.fsat = checked_frequency(panel_.fsat);
    panel_.repaint();
    link_.send(link::command::kFrequency + u' ' + panel_.fsat);
}

void Tuning::locopt_Click(int index) {
    if (!state_.recall_in_progress) {
        panel_.ol_freq_enabled = index == 1;
        if (index == 0) {
            link_.send(link::command::kNoOscillator);
        } else {
            // The option stores and selects oscillator "1 A"; the frequency box below has a form
            // of its own.
            const double oscillator = link::typed_value(panel_.ol_freq);
            link_.send(link::command::kOptionOscillator +
                       link::format_number(oscillator, " 00000"));
            link_.send(link::command::kOptionOscillator);
        }
    }
    if (!link_.can_send()) return;
    show_answer(link_.ask(link::command::query(link::command::kFrequency)), panel_.fsat,
                kFrequencyLost);
}

void Tuning::show_answer(const std::optional<QString>& answer, QString& box,
                         const Bilingual& cost) {
    const bool lost = !answer || link::meter_value(*answer) <= 0;
    if (lost && program_.corrected.keep_box) return;
    box = answer.value_or(QString());
    if (lost) program_.costs.tell(cost);
}

void Tuning::ol_freq_KeyPress(int key) {
    if (key != kEnterKey) return;
    panel_.ol_freq = clamped(panel_.ol_freq, programme::kOscillatorMinimum, "03070",
                             programme::kOscillatorMaximum, "12000")
                         .left(kOscillatorLength);
    panel_.repaint();
    const QString digits = link::format_number(link::typed_value(panel_.ol_freq), "00000");
    link_.send(link::command::kBoxOscillator + digits);
    link_.send(link::command::kBoxOscillator);
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
        link_.send(link::command::kSupplyOff);
        return;
    }
    // The voltage goes first, so that the supply never comes up at the one set before.
    link_.send(link::command::kSupplyVoltage + link::format_number(volts, " 00"));
    link_.send(link::command::kSupplyOn);
}

void Tuning::satlnb_state_Click(int index) {
    if (state_.recall_in_progress || index < 0 || index >= static_cast<int>(kLnbVolts.size()))
        return;
    send_supply(kLnbVolts[static_cast<std::size_t>(index)]);
}

void Tuning::tune_to(const WantedCarrier& carrier) {
    const auto entry = std::ranges::find(kLnbVolts, carrier.volts);
    if (entry != kLnbVolts.end()) {
        panel_.satlnb_state = static_cast<int>(entry - kLnbVolts.begin());
        satlnb_state_Click(panel_.satlnb_state);
        // It is the same supply that the instrument's own list shows.
        panel_.lnb_supply =
            static_cast<int>(std::ranges::find(programme::kSupplyVolts, carrier.volts) -
                             programme::kSupplyVolts.begin());
    }
    if (carrier.tone) {
        panel_.k22_state = *carrier.tone ? 0 : 1;
        k22_state_Click(panel_.k22_state);
    }
    panel_.locopt = {!carrier.oscillator, carrier.oscillator.has_value()};
    if (carrier.oscillator) panel_.ol_freq = link::plain_text(*carrier.oscillator);
    locopt_Click(carrier.oscillator ? 1 : 0);
    // The choice of the oscillator has read another one back.
    panel_.fsat = link::plain_text(carrier.mhz);
    fsat_KeyPress(kEnterKey);
    if (!carrier.symbol_rate) return;
    panel_.srqpsk_txt = QString::number(std::lround(*carrier.symbol_rate * kSymbolRateOfMega));
    srqpsk_txt_KeyPress(kEnterKey);
}

void Tuning::lnb_supply_Click(int index) {
    if (state_.recall_in_progress || index < 0 ||
        index >= static_cast<int>(programme::kSupplyVolts.size()))
        return;
    send_supply(programme::kSupplyVolts[static_cast<std::size_t>(index)]);
}

int Tuning::list_Click(const QString& word, int index, int count) {
    if (state_.recall_in_progress) return index;
    link_.send(word + link::format_number(index, " 00"));
    const std::optional<QString> answer = link_.ask(word + u'?');
    if (!answer) return index;
    const double accepted = link::meter_value(*answer);
    return accepted >= 0 && accepted < count ? static_cast<int>(accepted) : index;
}

void Tuning::k22_state_Click(int index) {
    if (state_.recall_in_progress) return;
    if (index == 0) link_.send(link::command::kToneOn);
    if (index == 1) link_.send(link::command::kToneOff);
}

void Tuning::srqpsk_txt_KeyPress(int key) {
    if (key != kEnterKey) return;
    const QString rate = clamped(panel_.srqpsk_txt, programme::kSymbolRateMinimum, "1500",
                                 programme::kSymbolRateMaximum, "45000");
    panel_.srqpsk_txt = link::format_number(link::typed_value(rate), "00000");
    panel_.repaint();
    link_.send(link::command::kSymbolRate + u' ' + panel_.srqpsk_txt);
}

QString Tuning::checked_bandwidth(const QString& text) {
    const QString bandwidth =
        clamped(text, programme::kBandwidthMinimum, "5", programme::kBandwidthMaximum, "36");
    return link::format_number(link::typed_value(bandwidth), "00");
}

void Tuning::chbws_KeyPress(int key) {
    if (key != kEnterKey) return;
    panel_.chbws = checked_bandwidth(panel_.chbws);
    panel_.repaint();
    link_.send(link::command::kBandwidth + u' ' + panel_.chbws);
}

}  // namespace m47::realtime
