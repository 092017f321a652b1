// SPDX-License-Identifier: GPL-3.0-or-later
#include "interpreter.h"
#include "text.h"

namespace meter {

namespace {

constexpr std::size_t kLogoLength = 16;

/// A motor command: its number and the numbers that follow it.
struct MotorCommand {
    int number = 0;
    std::vector<int> operands;
};

std::optional<MotorCommand> parse_motor(const std::string& argument) {
    auto parts = words(argument);
    if (!parts.empty() && parts[0].size() == 4) {
        // The position of "store" and "recall" stands right behind the number, as in 0605.
        const std::string joined = parts[0];
        parts[0] = joined.substr(0, 2);
        parts.insert(parts.begin() + 1, joined.substr(2));
    }
    std::vector<int> numbers;
    for (const std::string& part : parts) {
        const auto number = whole_number(part, 0, 99);
        if (!number) return std::nullopt;
        numbers.push_back(*number);
    }
    if (numbers.empty()) return std::nullopt;
    return MotorCommand{numbers.front(), {numbers.begin() + 1, numbers.end()}};
}

using MotorAction = void (Motor::*)();

MotorAction plain_action(int number) {
    switch (number) {
        case 0:
            return &Motor::stop;
        case 1:
            return &Motor::start_east;
        case 2:
            return &Motor::start_west;
        case 3:
            return &Motor::disable_limits;
        case 4:
            return &Motor::delete_east_limit;
        case 5:
            return &Motor::delete_west_limit;
        case 10:
            return &Motor::recalculate;
        case 11:
            return &Motor::reset;
        default:
            return nullptr;
    }
}

bool position_command(Motor& motor, const MotorCommand& command) {
    if (command.operands.size() != 1 || command.operands[0] < 1) return false;
    if (command.number == 6)
        motor.store(command.operands[0]);
    else
        motor.recall(command.operands[0]);
    return true;
}

bool drive_command(Motor& motor, const MotorCommand& command) {
    if (command.operands.size() != 2 || command.operands[0] < 1 || command.operands[1] > 1)
        return false;
    motor.drive(command.number == 8, command.operands[0], command.operands[1] == 1);
    return true;
}

}  // namespace

Reply Interpreter::drive_motor(const std::string& argument) {
    const auto command = parse_motor(argument);
    if (!command) return Reply::done_if(false);
    Motor& motor = state_.motor;
    if (const MotorAction action = plain_action(command->number)) {
        if (command->operands.empty()) (motor.*action)();
        return Reply::done_if(command->operands.empty());
    }
    switch (command->number) {
        case 6:
        case 7:
            return Reply::done_if(position_command(motor, *command));
        case 8:
        case 9:
            return Reply::done_if(drive_command(motor, *command));
        default:
            return Reply::done_if(false);
    }
}

Reply Interpreter::get_version(const std::string&) {
    return Reply::value_of(state_.version);
}

Reply Interpreter::set_device(const std::string& argument) {
    const auto device = whole_number(argument, 0, 9);
    if (device) state_.device = *device;
    return Reply::done_if(device.has_value());
}

Reply Interpreter::get_device(const std::string&) {
    return Reply::value_of(std::to_string(state_.device));
}

Reply Interpreter::set_logo(const std::string& argument) {
    state_.logo = trimmed(argument.substr(0, kLogoLength));
    return {};
}

Reply Interpreter::get_logo(const std::string&) {
    return Reply::value_of(state_.logo);
}

}  // namespace meter
