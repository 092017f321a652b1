// SPDX-License-Identifier: GPL-3.0-or-later
#include "upload_commands.h"

#include "commands.h"
#include "numbers.h"
#include "program_commands.h"
#include "tuning_range.h"

namespace m47 {
namespace {

constexpr const char* kPairArgument = " 00";
constexpr double kHighestNumber = 99;

QString with_pair(const QString& word, double value) {
    return word + format_number(value, kPairArgument);
}

QStringList tuning_commands(const ProgramRecord& program, const Oscillators& oscillators) {
    const int index = oscillator_entry(program.loc_osc0);
    const double mhz = typed_value(oscillators[static_cast<std::size_t>(index)]);
    QStringList commands = oscillator_commands(program.loc_osc, index, mhz);
    const char* picture = program.loc_osc ? " 0000.0" : " 00000";
    commands += command::kFrequency + format_number(typed_value(program.frequenza), picture);
    return commands;
}

QStringList demodulator_commands(const ProgramRecord& program) {
    if (!program.sat_ad) return {command::kAnalogMarker};
    const double rate = typed_value(program.qpsk_symbolrate);
    return {command::kDigitalMarker, command::kSymbolRate + format_number(rate, " 00000")};
}

QStringList storing_commands(const ProgramRecord& program) {
    QStringList commands{command::kStore};
    if (program.lnb_volt != 0) commands += command::kSupplyOff;
    if (program.K22 == 1) commands += command::kToneOff;
    return commands;
}

}  // namespace

void leave_out_blank(UploadPlan& plan) {
    std::erase_if(plan.programs, is_blank);
    if (plan.bandwidth.isEmpty() && !plan.programs.empty())
        plan.bandwidth = plan.programs.front().satchbw;
}

QStringList opening_commands(UploadMode mode) {
    QStringList commands{command::kMeasure};
    if (mode == kDisable) commands += command::query(command::kLoggerTable);
    if (mode == kReplace) {
        commands += with_pair(with_pair(command::kDelete, 0), kHighestNumber);
        commands += command::kClearLoggerTable;
    }
    return commands;
}

QStringList disabling_commands(const QStringList& lines) {
    QStringList commands;
    for (const QString& line : lines)
        if (table_line_active(line))
            commands += command::kLoggerTable + u' ' + table_line_number(line) + u' ' +
                        table_line_program(line) + QStringLiteral(" 00");
    return commands;
}

QStringList commands_of_program(const ProgramRecord& program, const Oscillators& oscillators) {
    const double number = typed_value(program.pg_num);
    QStringList commands{with_pair(command::kProgram, number)};
    commands += tuning_commands(program, oscillators);
    commands += demodulator_commands(program);
    commands += diseqc_command(program.diseqc_cmd);
    commands += supply_commands(program.lnb_volt);
    commands += tone_command(program.K22);
    commands += storing_commands(program);
    if (program.logger_state) {
        const QString line = with_pair(command::kLoggerTable, typed_value(program.logger_pos));
        commands += with_pair(with_pair(line, number), 1);
    }
    return commands;
}

QStringList plan_commands(const UploadPlan& plan) {
    QStringList commands{with_pair(command::kBandwidth, typed_value(plan.bandwidth)),
                         with_pair(command::kUnit, plan.unit_index)};
    for (const ProgramRecord& program : plan.programs)
        commands += commands_of_program(program, plan.oscillators);
    return commands;
}

QStringList upload_commands(const UploadPlan& plan, UploadMode mode, const QString& table) {
    QStringList commands = opening_commands(mode);
    if (mode == kDisable) commands += disabling_commands(table_lines(table));
    return commands + plan_commands(plan);
}

}  // namespace m47
