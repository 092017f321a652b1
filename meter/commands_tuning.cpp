// SPDX-License-Identifier: GPL-3.0-or-later
#include "interpreter.h"
#include "text.h"

namespace meter {

namespace {

constexpr int kLowestOscillator = 3070;
constexpr int kHighestOscillator = 12000;
constexpr int kHighestDiseqc = 73;

/// Takes a single whole number from low to high into `target`; an error leaves it unchanged.
Reply take_number(const std::string& argument, int low, int high, int& target) {
    const auto value = whole_number(argument, low, high);
    if (value) target = *value;
    return Reply::done_if(value.has_value());
}

Reply take_switch(const std::string& argument, bool& target) {
    int value = 0;
    const Reply reply = take_number(argument, 0, 1, value);
    if (reply.kind == Reply::Kind::ok) target = value == 1;
    return reply;
}

Reply two_digits(int value) {
    return Reply::value_of(zero_filled(value, 2));
}

/// The parts of an oscillator argument: number, bank letter, and a frequency to store.
struct OscillatorArgument {
    int number = 0;
    char bank = 'A';
    std::optional<int> mhz;
};

/// Two digits of a number with the five digits of a frequency right behind it, as in 0110600.
bool is_joined(const std::string& word) {
    return word.size() == 7 && whole_number(word).has_value();
}

std::optional<OscillatorArgument> parse_oscillator(const std::string& argument) {
    auto parts = words(argument);
    if (parts.size() == 1 && is_joined(parts[0]))
        parts = {parts[0].substr(0, 2), parts[0].substr(2)};
    if (parts.empty() || parts.size() > 3) return std::nullopt;
    OscillatorArgument result;
    const auto number = whole_number(parts[0], 0, OscillatorTable::count);
    if (!number) return std::nullopt;
    result.number = *number;
    std::size_t next = 1;
    if (next < parts.size() && (parts[next] == "A" || parts[next] == "B")) {
        result.bank = parts[next][0];
        ++next;
    }
    if (next < parts.size()) {
        result.mhz = whole_number(parts[next], kLowestOscillator, kHighestOscillator);
        if (!result.mhz || result.number == 0) return std::nullopt;
        ++next;
    }
    return next == parts.size() ? std::optional(result) : std::nullopt;
}

}  // namespace

Reply Interpreter::set_attenuator(const std::string& argument) {
    return take_number(argument, 0, 6, state_.settings.attenuator);
}

Reply Interpreter::get_attenuator(const std::string&) {
    return Reply::value_of(std::to_string(state_.settings.attenuator));
}

Reply Interpreter::set_frequency(const std::string& argument) {
    const auto mhz = decimal_number(argument);
    const auto if_mhz = mhz ? state_.settings.to_if(*mhz) : std::nullopt;
    if (if_mhz) state_.settings.if_mhz = *if_mhz;
    return Reply::done_if(if_mhz.has_value());
}

Reply Interpreter::get_frequency(const std::string&) {
    return Reply::value_of(frequency_text(state_.settings.shown_mhz()));
}

void Interpreter::choose_oscillator(int number, char bank) {
    Settings changed = state_.settings;
    changed.oscillator = {number, bank, number == 0 ? 0 : state_.oscillators.get(number, bank)};
    // The receiver stays on its IF; a converter delivers nothing below the satellite band.
    if (number != 0 && !changed.to_if(changed.shown_mhz())) changed.if_mhz = 1000.0;
    state_.settings = changed;
}

Reply Interpreter::set_oscillator(const std::string& argument) {
    const auto parsed = parse_oscillator(argument);
    if (!parsed) return Reply::done_if(false);
    if (!parsed->mhz) {
        choose_oscillator(parsed->number, parsed->bank);
        return {};
    }
    state_.oscillators.set(parsed->number, parsed->bank, *parsed->mhz);
    OscillatorChoice& chosen = state_.settings.oscillator;
    if (chosen.number == parsed->number && chosen.bank == parsed->bank) chosen.mhz = *parsed->mhz;
    return {};
}

Reply Interpreter::get_oscillator(const std::string&) {
    const OscillatorChoice& chosen = state_.settings.oscillator;
    if (chosen.number == 0) return two_digits(0);
    return Reply::value_of(zero_filled(chosen.number, 2) + " " + chosen.bank + " " +
                           zero_filled(chosen.mhz, 5));
}

Reply Interpreter::set_lnb(const std::string& argument) {
    return take_switch(argument, state_.settings.lnb_on);
}

Reply Interpreter::get_lnb(const std::string&) {
    return two_digits(state_.settings.lnb_on ? 1 : 0);
}

Reply Interpreter::set_lnb_volt(const std::string& argument) {
    const auto volt = whole_number(argument);
    const bool known = volt == 13 || volt == 15 || volt == 18 || volt == 24;
    if (known) state_.settings.lnb_volt = *volt;
    return Reply::done_if(known);
}

Reply Interpreter::get_lnb_volt(const std::string&) {
    return two_digits(state_.settings.lnb_volt);
}

Reply Interpreter::set_tone(const std::string& argument) {
    return take_switch(argument, state_.settings.tone_on);
}

Reply Interpreter::get_tone(const std::string&) {
    return two_digits(state_.settings.tone_on ? 1 : 0);
}

Reply Interpreter::set_symbol_rate(const std::string& argument) {
    return take_number(argument, 1500, 45000, state_.settings.symbol_rate);
}

Reply Interpreter::get_symbol_rate(const std::string&) {
    return Reply::value_of(zero_filled(state_.settings.symbol_rate, 5));
}

Reply Interpreter::set_channel_bandwidth(const std::string& argument) {
    return take_number(argument, 1, 40, state_.settings.channel_bandwidth);
}

Reply Interpreter::get_channel_bandwidth(const std::string&) {
    return two_digits(state_.settings.channel_bandwidth);
}

Reply Interpreter::set_marker(const std::string& argument) {
    const auto parts = words(argument);
    if (parts.size() != 2 || whole_number(parts[0]) != 1) return Reply::done_if(false);
    return take_switch(parts[1], state_.settings.digital);
}

Reply Interpreter::get_marker(const std::string&) {
    return Reply::value_of(state_.settings.digital ? "1 1" : "1 0");
}

Reply Interpreter::set_unit(const std::string& argument) {
    return take_number(argument, 0, 2, state_.settings.unit);
}

Reply Interpreter::get_unit(const std::string&) {
    return two_digits(state_.settings.unit);
}

Reply Interpreter::set_diseqc(const std::string& argument) {
    const Reply reply = take_number(argument, 0, kHighestDiseqc, state_.settings.diseqc);
    if (reply.kind == Reply::Kind::ok) ++state_.diseqc_sent;
    return reply;
}

Reply Interpreter::get_diseqc(const std::string&) {
    return two_digits(state_.settings.diseqc);
}

}  // namespace meter
