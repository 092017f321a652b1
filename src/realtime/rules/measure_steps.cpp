// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_steps.h"

#include <algorithm>

#include "commands.h"
#include "enter_key.h"
#include "fault.h"
#include "measure_replies.h"
#include "numbers.h"
#include "qpsk_mode.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kNoNoiseEntry{
    "C/N and noise not measured: tick Complete C/N and noise, or untick them",
    "C/N e rumore non misurati: spuntare Completa C/N e rumore, o toglierli"};

// The meter needs these pauses, in seconds, before its reading has settled.
constexpr double kAfterRanging = 1;
constexpr double kAfterAttenuator = 0.1;
constexpr double kAfterTuning = 1;

constexpr double kAttenuatorStep = 10;  // dB
constexpr double kFirstStepLevel = 60;  // dBuV

/// A C/N answer begins with a character that is a range mark or means nothing.
QString cn_value_text(const QString& reply) {
    const bool marked = reply.startsWith(u'<') || reply.startsWith(u'>');
    return marked ? reply : reply.mid(1);
}

// Where the value stands in an answer
QString whole(const QString& reply) {
    return reply;
}
QString behind_first(const QString& reply) {
    return reply.mid(1);
}
QString behind_lead(const QString& reply) {
    return link::trimmed_from(reply, 2);
}
QString behind_words(const QString& reply) {
    qsizetype words = 0;
    while (words < reply.size() && (reply[words].isLetter() || reply[words].isSpace())) ++words;
    return reply.mid(words);
}
QString behind_letters(const QString& reply) {
    return reply.mid(3);
}

}  // namespace

void MeasureSteps::check(AlarmRow row, double value) {
    check_limits(row, value, panel_, state_, empty_limits());
    const std::optional<measurement::Limits> limits = limits_in_force(row, panel_, empty_limits());
    if (limits) outcome.limits[static_cast<std::size_t>(*measure_of(row).quantity)] = limits;
}

void MeasureSteps::keep(measurement::Quantity quantity, const QString& answered) {
    outcome.reading(quantity) = measurement::reading_of(quantity, answered);
    // What the meter was asked in; the menus of the screens may say something else.
    if (quantity == measurement::Quantity::level || quantity == measurement::Quantity::noise)
        outcome.unit = measurement::unit_of_index(link_.settings.unit());
}

void MeasureSteps::expect(measurement::AskedFor asked, const QString& text) const {
    const bool rate = asked == measurement::AskedFor::channel_ber ||
                      asked == measurement::AskedFor::corrected_ber;
    const bool steps = asked == measurement::AskedFor::attenuation;
    // The meter may write its steps with two digits.
    const QString number = steps && text.startsWith(u'0') ? text.mid(1) : text;
    if (!(rate ? link::can_be_rate(number) : link::can_be_value(number)))
        throw DoubtfulAnswer(question_.toStdString());
}

void MeasureSteps::format_att() {
    link_.send(link::command::kFullAttenuation);
    link_.wait_time(kAfterRanging);
    if (program_.unit_index != kDbuv) link_.send(link::command::kUnit + QStringLiteral(" 00"));
    const QString steps = ask_one(link::command::query(link::command::kAttenuator),
                                  measurement::AskedFor::attenuation, whole);
    expect(measurement::AskedFor::attenuation, steps);
    double attenuation = link::meter_value(steps);
    const QString reading = ask_one(link::command::query(link::command::kLevel),
                                    measurement::AskedFor::ranging_level, behind_first);
    double level = 0;
    if (link::level_for_attenuator(reading, level)) {
        expect(measurement::AskedFor::ranging_level, reading.mid(2));
        if (level > attenuation * kAttenuatorStep + kFirstStepLevel) {
            attenuation += 1;
            link_.send(link::command::kAttenuator + link::format_number(attenuation, " 0"));
            link_.wait_time(kAfterAttenuator);
        }
    }
    if (program_.unit_index != kDbuv) cmdlev_Click(program_.unit_index);
}

void MeasureSteps::carr_satdig() {
    format_att();
    level_satdig();
}

void MeasureSteps::level_satdig() {
    const QString answer = ask_one(link::command::query(link::command::kChannelPower),
                                   measurement::AskedFor::channel_power, behind_lead);
    const QString level = link::trimmed_from(answer, 2);
    expect(measurement::AskedFor::channel_power, level);
    panel_.dcplev = level;
    keep(measurement::Quantity::level, panel_.dcplev);
    panel_.repaint();
    check(AlarmRow::dcp_level, link::delete_segno(panel_.dcplev));
    panel_.repaint();
}

QString& MeasureSteps::noise_entry(QString& entry) const {
    // Without the complete C/N and noise measures these steps have no frequency entry of their
    // own, and the cycle ends here.
    if (program_.corrected.complete || complete) return entry;
    program_.costs.tell(kNoNoiseEntry);
    throw Fault("no frequency entry for C/N and noise");
}

QString MeasureSteps::noise_frequency(QString& entry) const {
    return tuning_.noise_frequency(noise_entry(entry));
}

void MeasureSteps::cn_satdig() {
    link_.send(link::command::kFullAttenuation);
    link_.send(link::command::kMarker + QStringLiteral(" 1 1"));
    noise_frequency(panel_.noise_freqd);
    ask_cn_satdig();
}

void MeasureSteps::ask_cn_satdig() {
    const QString answer = ask_one(link::command::query(link::command::kDigitalCn),
                                   measurement::AskedFor::cn, behind_first);
    expect(measurement::AskedFor::cn, answer);
    panel_.cndlev = answer.trimmed();
    keep(measurement::Quantity::cn, cn_value_text(answer));
    panel_.repaint();
    state_.cn_value = link::meter_value(answer.mid(1));
    check(AlarmRow::cn_digital, state_.cn_value);
    panel_.repaint();
    state_.cn_done = true;
}

void MeasureSteps::levn_satdig() {
    const QString frequency = noise_frequency(panel_.noise_freqd);
    link_.send(link::command::kFrequency + u' ' + frequency);
    link_.wait_time(kAfterTuning);
    format_att();
    const QString answer = ask_one(link::command::query(link::command::kChannelPower) + frequency,
                                   measurement::AskedFor::noise, link::noise_power);
    const QString noise = link::noise_power(answer);
    expect(measurement::AskedFor::noise, noise);
    panel_.noisedlev = noise;
    keep(measurement::Quantity::noise, panel_.noisedlev);
    panel_.repaint();
    tuning_.fsat_KeyPress(kEnterKey);
}

void MeasureSteps::qpsk_real() {
    // PvBER and CFO alone read what the meter has; only CHBER and MER start its QPSK mode.
    const bool starts = panel_.meas_stated[kChber] || panel_.meas_stated[kMer];
    if (starts) start_qpsk();
    digital_acquire();
    if (starts) link_.send(link::command::kMeasure);
}

void MeasureSteps::start_qpsk() {
    tuning_.fsat_KeyPress(kEnterKey);
    link_.send(link::command::kAttenuator + QStringLiteral(" 00"));
    tuning_.srqpsk_txt_KeyPress(kEnterKey);
    link_.send(link::command::kQpskQuality);
    link_.wait_time(link::kAfterQpsk);
}

void MeasureSteps::show_field(const Measure& measure, const QString& answer) {
    const QString field = link::delete_cr(QString::fromLatin1(measure.label), answer);
    expect(*measure.asked, field);
    panel_.*measure.shown = field;
    keep(*measure.quantity, field);
    panel_.repaint();
    if (measure.alarm) check(measure.alarm->row, link::delete_segno(field.trimmed()));
}

void MeasureSteps::digital_acquire() {
    const auto ticked = [this](const Measure& measure) {
        return measure.label && is_ticked(measure, panel_);
    };
    if (std::ranges::none_of(measures(), ticked)) return;
    const QString answer = ask(link::command::query(link::command::kQpskQuality),
                               [this](const QString& reply) { return quality_in(reply); });
    for (const Measure& measure : measures())
        if (ticked(measure)) show_field(measure, answer);
}

void MeasureSteps::carr_satanl() {
    link_.send(link::command::kFullAttenuation);
    link_.wait_time(kAfterRanging);
    level_satanl();
}

void MeasureSteps::level_satanl() {
    const QString answer = ask_one(link::command::query(link::command::kLevel),
                                   measurement::AskedFor::level, behind_lead);
    const QString level = link::trimmed_from(answer, 2);
    expect(measurement::AskedFor::level, level);
    panel_.leva = level;
    keep(measurement::Quantity::level, panel_.leva);
    panel_.repaint();
    check(AlarmRow::level_analog, link::delete_segno(panel_.leva));
    panel_.repaint();
}

void MeasureSteps::cn_satanl() {
    link_.send(link::command::kFullAttenuation);
    link_.send(link::command::kMarker + QStringLiteral(" 1 0"));
    noise_frequency(panel_.noise_freqa);
    ask_cn_satanl();
}

void MeasureSteps::ask_cn_satanl() {
    const QString answer = ask_one(link::command::query(link::command::kAnalogCn),
                                   measurement::AskedFor::cn, behind_letters);
    expect(measurement::AskedFor::cn, answer.mid(3));
    panel_.cnalev = answer.mid(3);
    keep(measurement::Quantity::cn, panel_.cnalev);
    panel_.repaint();
    check(AlarmRow::cn_analog, link::delete_segno(panel_.cnalev.trimmed()));
    panel_.repaint();
}

void MeasureSteps::levn_satanl() {
    const QString frequency = noise_frequency(panel_.noise_freqa);
    link_.send(link::command::kFrequency + u' ' + frequency);
    link_.wait_time(kAfterTuning);
    const QString answer = ask_one(link::command::query(link::command::kLevel),
                                   measurement::AskedFor::noise, behind_words);
    expect(measurement::AskedFor::noise, behind_words(answer));
    panel_.noisealev = answer.trimmed();
    // An answer with a level begins with a character that is no part of it.
    keep(measurement::Quantity::noise, link::trimmed_from(answer, 2));
    panel_.repaint();
}

}  // namespace m47::realtime
