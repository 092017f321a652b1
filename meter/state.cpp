// SPDX-License-Identifier: GPL-3.0-or-later
#include "state.h"

#include "text.h"

namespace meter {

namespace {

std::size_t bank_index(char bank) {
    return bank == 'B' ? 1 : 0;
}

Settings stored_program(double if_mhz, bool digital, int symbol_rate, int volt, bool tone) {
    Settings settings;
    settings.if_mhz = if_mhz;
    settings.digital = digital;
    settings.symbol_rate = symbol_rate;
    settings.lnb_on = true;
    settings.lnb_volt = volt;
    settings.tone_on = tone;
    return settings;
}

std::string settings_report(const State& state) {
    std::string text = "version " + state.version + "\n";
    text += "settings " + describe(state.settings) + "\n";
    text += std::string("mode ") + (state.mode == Mode::measuring ? "measure" : "ber") + "\n";
    for (const char bank : {'A', 'B'}) {
        text += std::string("oscillators ") + bank;
        for (int number = 1; number <= OscillatorTable::count; ++number) {
            text += " ";
            text += zero_filled(state.oscillators.get(number, bank), 5);
        }
        text += "\n";
    }
    text += "device " + std::to_string(state.device) + "\n";
    text += "outputmode " + std::to_string(state.output_mode) + "\n";
    text += "diseqc-sent " + std::to_string(state.diseqc_sent) + "\n";
    text += "motor " + state.motor.describe() + "\n";
    return text + "logo " + state.logo + "\n";
}

std::string programs_report(const State& state) {
    std::string text = "selected-program " + zero_filled(state.selected_program, 2) + "\n";
    for (const auto& [number, settings] : state.programs)
        text += "program " + zero_filled(number, 2) + " " + describe(settings) + "\n";
    for (const auto& [number, line] : state.logger.table) {
        text += "logger-line " + zero_filled(number, 2) + " " + zero_filled(line.program, 2) + " " +
                zero_filled(line.state, 2) + "\n";
    }
    return text;
}

std::string satellites_report(const State& state) {
    std::string text;
    for (int slot = 0; slot < kSatelliteSlots; ++slot) {
        const SatelliteSlot& content = state.satellites.at(slot);
        text += "slot " + zero_filled(slot, 2) + " name " + content.name + "\n";
        for (const char c : slot_block(slot, content)) text += c == '\r' ? '\n' : c;
    }
    return text;
}

std::string logs_report(const State& state) {
    std::string text = "logs " + std::to_string(state.logger.count()) + " bytes " +
                       std::to_string(state.logger.bytes()) + "\n";
    for (const char c : state.logger.all())
        if (c != '\r') text += c;
    return text;
}

}  // namespace

int OscillatorTable::get(int number, char bank) const {
    return mhz_.at(bank_index(bank)).at(static_cast<std::size_t>(number - 1));
}

void OscillatorTable::set(int number, char bank, int mhz) {
    mhz_.at(bank_index(bank)).at(static_cast<std::size_t>(number - 1)) = mhz;
}

State::State(std::string version_text) : version(std::move(version_text)) {
    programs[1] = stored_program(1000.0, true, 27500, 13, false);
    programs[2] = stored_program(1190.0, false, 27500, 13, false);
    programs[3] = stored_program(1362.0, true, 30000, 13, false);
    programs[4] = stored_program(1041.5, true, 27500, 13, true);
    programs[5] = stored_program(1466.0, false, 27500, 18, false);
    programs[6] = stored_program(1127.0, true, 27500, 18, true);
    for (int line = 1; line <= 6; ++line) logger.table[line] = {line, line % 3 == 0 ? 0 : 1};
}

std::vector<std::pair<int, Settings>> State::logged_programs() const {
    std::vector<std::pair<int, Settings>> result;
    for (const auto& [number, line] : logger.table) {
        const auto found = programs.find(line.program);
        if (line.state == 1 && found != programs.end()) result.push_back(*found);
    }
    return result;
}

std::string State::report() const {
    return settings_report(*this) + programs_report(*this) + satellites_report(*this) +
           logs_report(*this);
}

void prefill_logger(State& state, std::optional<std::size_t> bytes, Receiver& receiver) {
    constexpr std::size_t usual_logs = 3;
    const auto programs = state.logged_programs();
    const auto filled = [&] {
        return bytes ? state.logger.bytes() >= *bytes : state.logger.count() >= usual_logs;
    };
    while (!filled()) state.logger.record(programs, receiver);
}

}  // namespace meter
