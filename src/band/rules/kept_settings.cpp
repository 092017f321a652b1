// SPDX-License-Identifier: GPL-3.0-or-later
#include "kept_settings.h"

#include <QRegularExpression>
#include <algorithm>

#include "commands.h"
#include "fault.h"
#include "numbers.h"
#include "work.h"

namespace m47::band {
namespace {

constexpr Bilingual kFrequencyName{"tuned frequency", "frequenza sintonizzata"};
constexpr Bilingual kOscillatorName{"local oscillator", "oscillatore locale"};
constexpr Bilingual kSupplyName{"LNB supply", "alimentazione LNB"};
constexpr Bilingual kToneName{"22 kHz tone", "tono 22 kHz"};
constexpr Bilingual kAttenuatorName{"attenuator", "attenuatore"};
constexpr Bilingual kSymbolRateName{"symbol rate", "symbol rate"};

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

bool is_symbol_rate(const QString& answer) {
    static const QRegularExpression kForm(QStringLiteral("^\\d{4,5}$"));
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

QString with_digits(const QString& word, int value) {
    return word + link::format_number(value, " 00");
}

QString KeptSettings::ask(const QString& word) {
    return link_.ask(link::command::query(word)).value_or(QString()).trimmed();
}

void KeptSettings::keep(const Bilingual& name, bool known, const QStringList& commands) {
    kept_.push_back({name, known, commands});
}

void KeptSettings::note_tuning() {
    if (tuning_noted_) return;
    tuning_noted_ = true;
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

void KeptSettings::note_feed(const Feed& feed) {
    if (feed.volts && !supply_noted_) {
        supply_noted_ = true;
        const std::optional<int> on = whole(ask(link::command::kSupply));
        const std::optional<int> volts = whole(ask(link::command::kSupplyVoltage));
        // The voltage goes first, so that the supply never comes up at the one of the work.
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

void KeptSettings::note_symbol_rate() {
    if (rate_noted_) return;
    rate_noted_ = true;
    const QString rate = ask(link::command::kSymbolRate);
    keep(kSymbolRateName, is_symbol_rate(rate), {link::command::kSymbolRate + u' ' + rate});
}

bool KeptSettings::bring_back(const Kept& kept) {
    if (!kept.known || !link_.can_send()) return false;
    try {
        return std::ranges::all_of(kept.commands, [this](const QString& command) {
            return link_.ask(command) == QStringLiteral("OK");
        });
    } catch (const Interrupted&) {
        return false;
    }
}

std::vector<Bilingual> KeptSettings::set_back() {
    // Told to stop or to end, the meter is still left in order; told again, not even that.
    const link::InOrder in_order(link_);
    std::vector<Bilingual> left;
    for (const Kept& kept : kept_)
        if (changed_ && !bring_back(kept)) left.push_back(kept.name);
    kept_.clear();
    changed_ = tuning_noted_ = supply_noted_ = tone_noted_ = rate_noted_ = false;
    return left;
}

QString names_in(const std::vector<Bilingual>& names, const Texts& texts) {
    QStringList words;
    for (const Bilingual& name : names) words += texts.pick(name);
    return words.join(QStringLiteral(", "));
}

}  // namespace m47::band
