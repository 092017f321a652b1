// SPDX-License-Identifier: GPL-3.0-or-later
#include "meter_levels.h"

#include <QRegularExpression>
#include <algorithm>

#include "commands.h"
#include "fault.h"
#include "measure_replies.h"
#include "numbers.h"
#include "work.h"

namespace m47::band {
namespace {

constexpr Bilingual kFrequencyName{"tuned frequency", "frequenza sintonizzata"};
constexpr Bilingual kOscillatorName{"local oscillator", "oscillatore locale"};
constexpr Bilingual kSupplyName{"LNB supply", "alimentazione LNB"};
constexpr Bilingual kToneName{"22 kHz tone", "tono 22 kHz"};
constexpr Bilingual kAttenuatorName{"attenuator", "attenuatore"};

const QString kDone = QStringLiteral("OK");
/// The meter needs this pause in seconds before its reading has settled, once for all of a sweep.
constexpr double kAfterRanging = 1;
/// A doubtful answer is asked for again so often.
constexpr int kTries = 2;

QString with_digits(const QString& word, int value) {
    return word + link::format_number(value, " 00");
}

/// The whole number that `answer` is and nothing else.
std::optional<int> whole(const QString& answer) {
    bool good = false;
    const int value = answer.trimmed().toInt(&good);
    return good ? std::optional(value) : std::nullopt;
}

bool is_frequency(const QString& answer) {
    static const QRegularExpression kForm(QStringLiteral("^\\d{3,5}(\\.\\d)?$"));
    return kForm.match(answer).hasMatch();
}

/// The command that selects the oscillator that `answer` names, "01 A 10600" or "00"; empty where
/// it names none.
QString oscillator_command(const QString& answer) {
    static const QRegularExpression kForm(QStringLiteral("^0?([1-9]) ([AB]) \\d{5}$"));
    if (whole(answer) == 0) return link::command::kNoOscillator;
    const QRegularExpressionMatch match = kForm.match(answer);
    if (!match.hasMatch()) return {};
    return link::command::kOscillator + u' ' + match.captured(1) + u' ' + match.captured(2);
}

}  // namespace

QString MeterLevels::ask(const QString& word) {
    return link_.ask(link::command::query(word)).value_or(QString()).trimmed();
}

void MeterLevels::keep(const Bilingual& name, bool known, const QStringList& commands) {
    kept_.push_back({name, known, commands});
}

void MeterLevels::note() {
    if (noted_) return;
    noted_ = true;
    const QString frequency = ask(link::command::kFrequency);
    const QString oscillator = oscillator_command(ask(link::command::kOscillator));
    const std::optional<int> attenuator = whole(ask(link::command::kAttenuator));
    link_.send(link::command::query(link::command::kUnit));
    // The frequency holds in the band of its oscillator.
    keep(kOscillatorName, !oscillator.isEmpty(), {oscillator});
    keep(kFrequencyName, is_frequency(frequency), {link::command::kFrequency + u' ' + frequency});
    keep(kAttenuatorName, attenuator.has_value(),
         {with_digits(link::command::kAttenuator, attenuator.value_or(0))});
}

void MeterLevels::note_feed(const Feed& feed) {
    if (feed.volts && !supply_noted_) {
        supply_noted_ = true;
        const std::optional<int> on = whole(ask(link::command::kSupply));
        const std::optional<int> volts = whole(ask(link::command::kSupplyVoltage));
        // The voltage goes first, so that the supply never comes up at the one of the sweep.
        keep(kSupplyName, on && volts,
             {with_digits(link::command::kSupplyVoltage, volts.value_or(0)),
              on == 1 ? link::command::kSupplyOn : link::command::kSupplyOff});
    }
    if (feed.tone && !tone_noted_) {
        tone_noted_ = true;
        const std::optional<int> on = whole(ask(link::command::kTone));
        keep(kToneName, on.has_value(), {with_digits(link::command::kTone, on.value_or(0))});
    }
}

void MeterLevels::send(const QString& command) {
    if (!lost()) link_.send(command);
}

void MeterLevels::prepare(const Feed& feed) {
    note();
    note_feed(feed);
    send(link::command::kMeasure);
    send(link::command::kNoOscillator);
    if (feed.volts == 0) send(link::command::kSupplyOff);
    if (feed.volts.value_or(0) > 0) {
        send(with_digits(link::command::kSupplyVoltage, *feed.volts));
        send(link::command::kSupplyOn);
    }
    if (feed.tone) send(*feed.tone ? link::command::kToneOn : link::command::kToneOff);
    send(link::command::kFullAttenuation);
    if (!lost()) link_.wait_time(kAfterRanging);
}

/// Nothing where an answer is doubtful; a level that is none where the meter has none to give.
std::optional<measurement::Reading> MeterLevels::ask_level(double mhz) {
    const link::Measuring measuring(link_);
    try {
        const QString tuned = link::format_number(mhz, "0000.0");
        // What the meter has not tuned to is the level of another frequency.
        if (link_.ask(link::command::kFrequency + u' ' + tuned) != kDone) return std::nullopt;
        const auto answer = link_.ask(link::command::query(link::command::kLevel));
        if (!answer) return std::nullopt;
        const QString text = link::trimmed_from(*answer, 2);
        if (!link::can_be_value(text)) return std::nullopt;
        return measurement::reading_of(measurement::Quantity::level, text);
    } catch (const DoubtfulAnswer&) {
        return std::nullopt;
    }
}

measurement::Reading MeterLevels::level(double mhz) {
    for (int tried = 0; tried < kTries && !lost(); ++tried)
        if (const auto reading = ask_level(mhz)) return *reading;
    return {};
}

bool MeterLevels::bring_back(const Kept& kept) {
    if (!kept.known || lost()) return false;
    try {
        return std::ranges::all_of(
            kept.commands, [this](const QString& command) { return link_.ask(command) == kDone; });
    } catch (const Interrupted&) {
        return false;
    }
}

std::vector<Bilingual> MeterLevels::set_back() {
    // Told to stop or to end, the meter is still left in order; told again, not even that.
    const link::InOrder in_order(link_);
    std::vector<Bilingual> left;
    for (const Kept& kept : kept_)
        if (!bring_back(kept)) left.push_back(kept.name);
    kept_.clear();
    noted_ = supply_noted_ = tone_noted_ = false;
    return left;
}

QString names_in(const std::vector<Bilingual>& names, const Texts& texts) {
    QStringList words;
    for (const Bilingual& name : names) words += texts.pick(name);
    return words.join(QStringLiteral(", "));
}

}  // namespace m47::band
