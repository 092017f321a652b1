// SPDX-License-Identifier: GPL-3.0-or-later
#include "upload_commands.h"

#include "commands.h"
#include "numbers.h"
#include "program_commands.h"
#include "program_limits.h"

namespace m47::plans {

void leave_out_blank(UploadPlan& plan) {
    std::erase_if(plan.programs, programme::is_untuned);
    if (plan.bandwidth.isEmpty() && !plan.programs.empty())
        plan.bandwidth = plan.programs.front().satchbw;
}

QStringList opening_commands(UploadMode mode) {
    QStringList commands{link::command::kMeasure};
    if (mode == kDisable) commands += link::command::query(link::command::kLoggerTable);
    if (mode == kReplace) {
        commands += programme::with_pair(programme::with_pair(link::command::kDelete, 0),
                                         programme::kHighestProgram);
        commands += link::command::kClearLoggerTable;
    }
    return commands;
}

QStringList disabling_commands(const QStringList& lines) {
    QStringList commands;
    for (const QString& line : lines)
        if (table_line_active(line))
            commands += link::command::kLoggerTable + u' ' + table_line_number(line) + u' ' +
                        table_line_program(line) + QStringLiteral(" 00");
    return commands;
}

QStringList settings_commands(const UploadPlan& plan) {
    return {programme::with_pair(link::command::kBandwidth, link::typed_value(plan.bandwidth)),
            programme::with_pair(link::command::kUnit, plan.unit_index)};
}

QStringList plan_commands(const UploadPlan& plan) {
    QStringList commands = settings_commands(plan);
    for (const programme::ProgramRecord& program : plan.programs)
        commands += programme::commands_of_program(program, plan.oscillators);
    return commands;
}

QStringList upload_commands(const UploadPlan& plan, UploadMode mode, const QString& table) {
    QStringList commands = opening_commands(mode);
    if (mode == kDisable) commands += disabling_commands(table_lines(table));
    return commands + plan_commands(plan);
}

}  // namespace m47::plans
