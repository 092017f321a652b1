// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

#include "receiver.h"
#include "state.h"

namespace meter {

/// What the meter says about a command, before echo and line ends are added.
struct Reply {
    enum class Kind {
        ok,       ///< a setting was accepted
        value,    ///< the value of a query (CR is added before OK)
        lines,    ///< text whose lines already have their ends
        error,    ///< a setting out of range
        unknown,  ///< no such command
        invalid   ///< a query with a bad argument
    };

    Kind kind = Kind::ok;
    std::string text;

    static Reply value_of(std::string text) { return {Kind::value, std::move(text)}; }
    static Reply done_if(bool good) { return {good ? Kind::ok : Kind::error, {}}; }
};

/// Understands command lines: works on the state and the receiver given.
class Interpreter {
  public:
    Interpreter(State& state, Receiver& receiver);

    /// Carries out one line (without its CR); returns the complete answer, echo included.
    std::string answer(const std::string& line);

  private:
    using Handler = Reply (Interpreter::*)(const std::string& argument);

    struct Command {
        std::string_view name;
        Handler set;
        Handler query;
        bool query_takes_argument;
    };

    static const Command* find(std::string_view line);
    Reply execute(const std::string& line);
    Reply take_srecord(const std::string& line);

    // Tuning
    Reply set_attenuator(const std::string& argument);
    Reply get_attenuator(const std::string& argument);
    Reply set_frequency(const std::string& argument);
    Reply get_frequency(const std::string& argument);
    Reply set_oscillator(const std::string& argument);
    Reply get_oscillator(const std::string& argument);
    Reply set_lnb(const std::string& argument);
    Reply get_lnb(const std::string& argument);
    Reply set_lnb_volt(const std::string& argument);
    Reply get_lnb_volt(const std::string& argument);
    Reply set_tone(const std::string& argument);
    Reply get_tone(const std::string& argument);
    Reply set_symbol_rate(const std::string& argument);
    Reply get_symbol_rate(const std::string& argument);
    Reply set_channel_bandwidth(const std::string& argument);
    Reply get_channel_bandwidth(const std::string& argument);
    Reply set_marker(const std::string& argument);
    Reply get_marker(const std::string& argument);
    Reply set_unit(const std::string& argument);
    Reply get_unit(const std::string& argument);
    Reply set_diseqc(const std::string& argument);
    Reply get_diseqc(const std::string& argument);
    Reply drive_motor(const std::string& argument);
    void choose_oscillator(int number, char bank);

    // Measuring
    Reply start_measuring(const std::string& argument);
    Reply start_error_rate(const std::string& argument);
    Reply get_level(const std::string& argument);
    Reply get_channel_power(const std::string& argument);
    Reply get_analog_cn(const std::string& argument);
    Reply get_digital_cn(const std::string& argument);
    Reply get_error_rate(const std::string& argument);
    Reply set_output_mode(const std::string& argument);
    Reply get_output_mode(const std::string& argument);
    Reply send_span(const std::string& argument);

    // Programs and logger
    Reply select_program(const std::string& argument);
    Reply get_program(const std::string& argument);
    Reply store_program(const std::string& argument);
    Reply delete_programs(const std::string& argument);
    Reply set_logger_line(const std::string& argument);
    Reply get_logger_table(const std::string& argument);
    Reply record_log(const std::string& argument);
    Reply send_all_logs(const std::string& argument);
    Reply send_last_log(const std::string& argument);
    Reply delete_all_logs(const std::string& argument);
    Reply delete_last_log(const std::string& argument);

    // Satellites
    Reply set_satellite_name(const std::string& argument);
    Reply get_satellite_names(const std::string& argument);
    Reply learn_satellite(const std::string& argument);
    Reply delete_satellite(const std::string& argument);
    Reply copy_satellites(const std::string& argument);

    // The rest
    Reply get_version(const std::string& argument);
    Reply set_device(const std::string& argument);
    Reply get_device(const std::string& argument);
    Reply set_logo(const std::string& argument);
    Reply get_logo(const std::string& argument);

    State& state_;
    Receiver& receiver_;
};

}  // namespace meter
