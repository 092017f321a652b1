// SPDX-License-Identifier: GPL-3.0-or-later
#include "meter_settings.h"

#include <QStringList>

#include "commands.h"
#include "numbers.h"

namespace m47::link {
namespace {

/// What stands behind `word` in `command`: an argument, or "?". Nothing where another word is
/// meant.
std::optional<QString> argument_of(const QString& command, const QString& word) {
    if (!command.startsWith(word)) return {};
    const QString argument = command.mid(word.size());
    if (!argument.isEmpty() && argument[0].isLetter()) return {};
    return argument;
}

/// The number in an argument or, to a query, in its answer; nothing where there is none.
std::optional<double> number_in(const QString& argument, const QString& answer) {
    const QString text = (argument == u'?' ? answer : argument).trimmed();
    if (text.isEmpty() || !(text[0].isDigit() || text[0] == u'-')) return {};
    return meter_value(text);
}

}  // namespace

void MeterSettings::take(const QString& command, const QString& answer) {
    if (const auto unit = argument_of(command, command::kUnit)) {
        const std::optional<double> index = number_in(*unit, answer);
        unit_.reset();
        if (index && *index >= 0 && *index < 3) unit_ = static_cast<int>(*index);
    } else if (const auto frequency = argument_of(command, command::kFrequency)) {
        frequency_ = number_in(*frequency, answer);
    } else if (const auto oscillator = argument_of(command, command::kOscillator)) {
        if (*oscillator == u'?')
            take_answered_oscillator(answer);
        else
            take_oscillator(*oscillator);
    }
}

void MeterSettings::doubt(const QString& command) {
    if (command.endsWith(u'?')) return;
    if (argument_of(command, command::kUnit)) unit_.reset();
    if (argument_of(command, command::kFrequency)) frequency_.reset();
    if (argument_of(command, command::kOscillator)) oscillator_.reset();
}

/// "01 A 10600", or "00" for none.
void MeterSettings::take_answered_oscillator(const QString& answer) {
    oscillator_.reset();
    const QStringList parts = answer.simplified().split(u' ');
    const int number = static_cast<int>(meter_value(parts[0]));
    if (number > 0 && parts.size() == 3) stored_[number] = meter_value(parts[2]);
    take_oscillator(u' ' + parts[0]);
}

void MeterSettings::take_oscillator(const QString& argument) {
    QStringList parts = argument.simplified().split(u' ');
    // The frequency box writes number and frequency in one: two digits, then five.
    if (!argument.startsWith(u' ')) parts = {argument.left(2), argument.mid(2)};
    parts.removeAll(QStringLiteral("A"));
    parts.removeAll(QString());
    if (parts.isEmpty()) return;
    const int number = static_cast<int>(meter_value(parts[0]));
    if (parts.size() > 1) {
        stored_[number] = meter_value(parts[1]);
        return;
    }
    oscillator_.reset();
    const auto found = stored_.find(number);
    if (number > 0 && found != stored_.end()) oscillator_ = found->second;
}

}  // namespace m47::link
