// SPDX-License-Identifier: GPL-3.0-or-later
#include "interpreter.h"

#include <array>

#include "srecord.h"
#include "text.h"

namespace meter {

namespace {

bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string with_ends(const Reply& reply) {
    switch (reply.kind) {
        case Reply::Kind::ok:
            return "OK\r";
        case Reply::Kind::value:
            return reply.text + "\rOK\r";
        case Reply::Kind::lines:
            return reply.text + "OK\r";
        case Reply::Kind::error:
            return "ERROR\r";
        case Reply::Kind::unknown:
            return "COMMAND ERROR\r";
        case Reply::Kind::invalid:
            return "Invalid Parameter(s)\rOK\r";
    }
    return {};
}

}  // namespace

Interpreter::Interpreter(State& state, Receiver& receiver) : state_(state), receiver_(receiver) {}

std::string Interpreter::answer(const std::string& line) {
    state_.motor.tick();
    return line + "\r" + with_ends(execute(line));
}

const Interpreter::Command* Interpreter::find(std::string_view line) {
    using I = Interpreter;
    static const std::array<Command, 36> commands{{
        {"ASLDEL", &I::delete_satellite, nullptr, false},
        {"ASLLEARN", &I::learn_satellite, nullptr, false},
        {"ASLNAME", &I::set_satellite_name, &I::get_satellite_names, false},
        {"ATTEN", &I::set_attenuator, &I::get_attenuator, false},
        {"BERQPSK", &I::start_error_rate, &I::get_error_rate, false},
        {"CHBW", &I::set_channel_bandwidth, &I::get_channel_bandwidth, false},
        {"DATADELALL", &I::delete_all_logs, nullptr, false},
        {"DATADELLAST", &I::delete_last_log, nullptr, false},
        {"DATAIN", &I::record_log, nullptr, false},
        {"DATALASTOUT", &I::send_last_log, nullptr, false},
        {"DATAOUT", &I::send_all_logs, nullptr, false},
        {"DATAPROGRAM", &I::set_logger_line, &I::get_logger_table, false},
        {"DELETE", &I::delete_programs, nullptr, false},
        {"DEVICE", &I::set_device, &I::get_device, false},
        {"DISEQC", &I::set_diseqc, &I::get_diseqc, false},
        {"DISEQCMOT", &I::drive_motor, nullptr, false},
        {"FREQ", &I::set_frequency, &I::get_frequency, false},
        {"LEVANL", nullptr, &I::get_level, false},
        {"LEVCNA", nullptr, &I::get_analog_cn, false},
        {"LEVCND", nullptr, &I::get_digital_cn, false},
        {"LEVDCP", nullptr, &I::get_channel_power, true},
        {"LNB", &I::set_lnb, &I::get_lnb, false},
        {"LNVOLT", &I::set_lnb_volt, &I::get_lnb_volt, false},
        {"LOCOSC", &I::set_oscillator, &I::get_oscillator, false},
        {"LOGO", &I::set_logo, &I::get_logo, false},
        {"MARKER", &I::set_marker, &I::get_marker, false},
        {"MASTERCOPY", &I::copy_satellites, nullptr, false},
        {"MEASURE", &I::start_measuring, nullptr, false},
        {"OUTPUTMODE", &I::set_output_mode, &I::get_output_mode, false},
        {"PROGRAM", &I::select_program, &I::get_program, false},
        {"SPANOUT", &I::send_span, nullptr, false},
        {"STORE", &I::store_program, nullptr, false},
        {"SYMBRATEQPSK", &I::set_symbol_rate, &I::get_symbol_rate, false},
        {"TONE22K", &I::set_tone, &I::get_tone, false},
        {"UNIT", &I::set_unit, &I::get_unit, false},
        {"VER", nullptr, &I::get_version, false},
    }};
    const std::string text = upper(line);
    for (const Command& command : commands) {
        const auto size = command.name.size();
        if (text.starts_with(command.name) && (text.size() == size || !is_letter(text[size])))
            return &command;
    }
    return nullptr;
}

Reply Interpreter::execute(const std::string& line) {
    const auto start = line.find_first_not_of(' ');
    const std::string text = start == std::string::npos ? std::string() : line.substr(start);
    if (looks_like_srecord(text)) return take_srecord(trimmed(text));
    const Command* command = find(text);
    if (command == nullptr) return {Reply::Kind::unknown, {}};
    const std::string argument = trimmed(std::string_view(text).substr(command->name.size()));
    const bool query = argument.starts_with('?');
    const Handler handler = query ? command->query : command->set;
    if (handler == nullptr) return {Reply::Kind::unknown, {}};
    if (!query) return (this->*handler)(argument);
    const std::string query_argument = trimmed(std::string_view(argument).substr(1));
    if (!query_argument.empty() && !command->query_takes_argument)
        return {Reply::Kind::invalid, {}};
    return (this->*handler)(query_argument);
}

Reply Interpreter::take_srecord(const std::string& line) {
    const auto result = state_.block.take(line);
    if (result == BlockReceiver::Result::complete)
        state_.satellites.put(state_.block.slot(), state_.block.content());
    return Reply::done_if(result != BlockReceiver::Result::refused);
}

}  // namespace meter
