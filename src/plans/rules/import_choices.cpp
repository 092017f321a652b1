// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_choices.h"

#include "fields.h"
#include "plan_rows.h"
#include "replaced_programs.h"

namespace m47::plans {
namespace {

using Programs = std::vector<programme::ProgramRecord>;

/// As if the file said so: what it does not say would stay as it is in the plan.
void say(ImportCandidate& candidate, const char* field) {
    const QString name = QString::fromLatin1(field);
    candidate.empty_cells.removeAll(name);
    if (!candidate.columns.contains(name)) candidate.columns += name;
}

/// The program of the plan that has the candidate's number; nullptr where none has.
const programme::ProgramRecord* with_number_of(const ImportCandidate& candidate,
                                               const Programs& programs) {
    const auto number = number_of(candidate.record);
    for (const programme::ProgramRecord& program : programs)
        if (number && number_of(program) == number) return &program;
    return nullptr;
}

void give_line(ImportCandidate& candidate, const programme::ProgramRecord* replaced,
               Programs& used) {
    const bool has_line = !candidate.record.logger_pos.trimmed().isEmpty();
    const bool keeps_line = replaced && !replaced->logger_pos.trimmed().isEmpty();
    if (!has_line && !keeps_line) {
        const QString line = free_logger_position(used);
        if (line.isEmpty()) return;
        candidate.record.logger_pos = line;
        used.push_back(candidate.record);
        say(candidate, db::field::kLoggerPos);
    }
    candidate.record.logger_state = true;
    say(candidate, db::field::kLoggerState);
}

/// The programs of the plan, and what of the file has a line of its own.
Programs with_lines(const std::vector<ImportCandidate>& candidates, Programs programs) {
    for (const ImportCandidate& candidate : candidates)
        if (candidate.comes() && !candidate.record.logger_pos.trimmed().isEmpty())
            programs.push_back(candidate.record);
    return programs;
}

}  // namespace

std::vector<ImportCandidate> with_choices(std::vector<ImportCandidate> candidates,
                                          const std::vector<programme::ProgramRecord>& programs,
                                          const ImportChoices& choices) {
    Programs used = with_lines(candidates, programs);
    for (ImportCandidate& candidate : candidates) {
        const programme::ProgramRecord* there = with_number_of(candidate, programs);
        const bool left_out = there && choices.taken == TakenNumbers::leave_out;
        if (!candidate.comes() || left_out) continue;
        if (choices.logger_lines) give_line(candidate, there, used);
        if (!choices.monitored) continue;
        candidate.record.monitor_state = true;
        say(candidate, db::field::kMonitorState);
    }
    return candidates;
}

}  // namespace m47::plans
