// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_commands.h"

#include "commands.h"
#include "numbers.h"

namespace m47::programme {
namespace {

QStringList tuning_commands(const ProgramRecord& program, const Oscillators& oscillators) {
    const int index = oscillator_entry(program.loc_osc0);
    const double mhz = link::typed_value(oscillators[static_cast<std::size_t>(index)]);
    QStringList commands = oscillator_commands(program.loc_osc, index, mhz);
    const char* picture = program.loc_osc ? " 0000.0" : " 00000";
    commands += link::command::kFrequency +
                link::format_number(link::typed_value(program.frequenza), picture);
    return commands;
}

QStringList demodulator_commands(const ProgramRecord& program) {
    if (!program.sat_ad) return {link::command::kAnalogMarker};
    const double rate = link::typed_value(program.qpsk_symbolrate);
    return {link::command::kDigitalMarker,
            link::command::kSymbolRate + link::format_number(rate, " 00000")};
}

QStringList storing_commands(const ProgramRecord& program) {
    QStringList commands{link::command::kStore};
    if (program.lnb_volt != 0) commands += link::command::kSupplyOff;
    if (program.K22 == 1) commands += link::command::kToneOff;
    return commands;
}

}  // namespace

QStringList oscillator_commands(bool direct, int loc_osc0, double mhz) {
    if (direct) return {link::command::kOscillator + QStringLiteral(" 0")};
    const QString number = link::command::kOscillator + link::format_number(loc_osc0 + 1, " 0");
    return {number + link::format_number(mhz, " 00000"), number};
}

QStringList supply_commands(int lnb_volt) {
    if (lnb_volt == 0) return {link::command::kSupplyOff};
    QStringList commands{link::command::kSupplyOn};
    if (lnb_volt == 1) commands.append(link::command::kSupplyVoltage + QStringLiteral(" 13"));
    if (lnb_volt == 2) commands.append(link::command::kSupplyVoltage + QStringLiteral(" 18"));
    return commands;
}

QString tone_command(int k22) {
    return with_pair(link::command::kTone, k22);
}

QString diseqc_command(int index) {
    return with_pair(link::command::kDiseqc, index);
}

QString with_pair(const QString& word, double value) {
    return word + link::format_number(value, " 00");
}

QStringList commands_of_program(const ProgramRecord& program, const Oscillators& oscillators) {
    const double number = link::typed_value(program.pg_num);
    QStringList commands{with_pair(link::command::kProgram, number)};
    commands += tuning_commands(program, oscillators);
    commands += demodulator_commands(program);
    commands += diseqc_command(program.diseqc_cmd);
    commands += supply_commands(program.lnb_volt);
    commands += tone_command(program.K22);
    commands += storing_commands(program);
    if (program.logger_state) {
        const QString line =
            with_pair(link::command::kLoggerTable, link::typed_value(program.logger_pos));
        commands += with_pair(with_pair(line, number), 1);
    }
    return commands;
}

QStringList switching_commands(const ProgramRow& program, const Oscillators& oscillators) {
    const int entry = program.oscillator().value_or(0);
    const double mhz = link::typed_value(oscillators[static_cast<std::size_t>(entry)]);
    QStringList commands = oscillator_commands(program.direct(), entry, mhz);
    commands += supply_commands(program.whole(&ProgramRecord::lnb_volt));
    commands += tone_command(program.whole(&ProgramRecord::K22));
    for (const int place : program.diseqc()) commands += diseqc_command(place);
    return commands;
}

}  // namespace m47::programme
