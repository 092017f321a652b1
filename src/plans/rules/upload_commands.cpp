// SPDX-License-Identifier: GPL-3.0-or-later
#include "upload_commands.h"

#include "commands.h"
#include "numbers.h"
#include "program_commands.h"
#include "program_limits.h"

namespace m47 {

void leave_out_blank(UploadPlan& plan) {
    std::erase_if(plan.programs, is_untuned);
    if (plan.bandwidth.isEmpty() && !plan.programs.empty())
        plan.bandwidth = plan.programs.front().satchbw;
}

QStringList opening_commands(UploadMode mode) {
    QStringList commands{command::kMeasure};
    if (mode == kDisable) commands += command::query(command::kLoggerTable);
    if (mode == kReplace) {
        commands += with_pair(with_pair(command::kDelete, 0), kHighestProgram);
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

QStringList settings_commands(const UploadPlan& plan) {
    return {with_pair(command::kBandwidth, typed_value(plan.bandwidth)),
            with_pair(command::kUnit, plan.unit_index)};
}

QStringList plan_commands(const UploadPlan& plan) {
    QStringList commands = settings_commands(plan);
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
