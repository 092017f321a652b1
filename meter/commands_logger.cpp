// SPDX-License-Identifier: GPL-3.0-or-later
#include "interpreter.h"
#include "text.h"

namespace meter {

namespace {

constexpr int kHighestProgram = 99;

}  // namespace

Reply Interpreter::select_program(const std::string& argument) {
    const auto number = whole_number(argument, 0, kHighestProgram);
    if (number) state_.selected_program = *number;
    return Reply::done_if(number.has_value());
}

Reply Interpreter::get_program(const std::string&) {
    return Reply::value_of(zero_filled(state_.selected_program, 2));
}

Reply Interpreter::store_program(const std::string& argument) {
    if (argument.empty()) state_.programs[state_.selected_program] = state_.settings;
    return Reply::done_if(argument.empty());
}

Reply Interpreter::delete_programs(const std::string& argument) {
    const auto parts = words(argument);
    if (parts.empty() || parts.size() > 2) return Reply::done_if(false);
    const auto first = whole_number(parts.front(), 0, kHighestProgram);
    const auto last = whole_number(parts.back(), 0, kHighestProgram);
    if (!first || !last || *first > *last) return Reply::done_if(false);
    std::erase_if(state_.programs, [&](const auto& program) {
        return program.first >= *first && program.first <= *last;
    });
    return {};
}

Reply Interpreter::set_logger_line(const std::string& argument) {
    const auto parts = words(argument);
    if (parts.size() == 1 && parts[0] == "*") {
        state_.logger.table.clear();
        return {};
    }
    if (parts.size() != 3) return Reply::done_if(false);
    const auto line = whole_number(parts[0], 0, kLoggerLines - 1);
    const auto program = whole_number(parts[1], 0, kHighestProgram);
    const auto active = whole_number(parts[2], 0, 1);
    if (!line || !program || !active) return Reply::done_if(false);
    state_.logger.table[*line] = {*program, *active};
    return {};
}

Reply Interpreter::get_logger_table(const std::string&) {
    return Reply::value_of(state_.logger.table_text());
}

Reply Interpreter::record_log(const std::string& argument) {
    if (!argument.empty()) return Reply::done_if(false);
    auto programs = state_.logged_programs();
    if (programs.empty()) programs.emplace_back(state_.selected_program, state_.settings);
    for (auto& [number, settings] : programs) settings.unit = state_.settings.unit;
    state_.logger.record(programs, receiver_);
    return {};
}

Reply Interpreter::send_all_logs(const std::string& argument) {
    if (!argument.empty()) return Reply::done_if(false);
    return {Reply::Kind::lines, state_.logger.all()};
}

Reply Interpreter::send_last_log(const std::string& argument) {
    if (!argument.empty()) return Reply::done_if(false);
    return {Reply::Kind::lines, state_.logger.last()};
}

Reply Interpreter::delete_all_logs(const std::string& argument) {
    if (argument.empty()) state_.logger.delete_all();
    return Reply::done_if(argument.empty());
}

Reply Interpreter::delete_last_log(const std::string& argument) {
    if (argument.empty()) state_.logger.delete_last();
    return Reply::done_if(argument.empty());
}

}  // namespace meter
