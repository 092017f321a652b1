// SPDX-License-Identifier: GPL-3.0-or-later
#include "replaced_programs.h"

#include "box_numbers.h"
#include "fields.h"
#include "numbers.h"
#include "program_checks.h"
#include "program_differences.h"

namespace m47::plans {
namespace {

bool is_field(const programme::ProgramField& field, const char* name) {
    return QLatin1String(field.name) == QLatin1String(name);
}

/// A file that names the oscillator says with it whether one is used.
bool is_in_file(const programme::ProgramField& field, const QStringList& columns) {
    if (columns.contains(QLatin1String(field.name))) return true;
    const bool by_oscillator =
        is_field(field, db::field::kLocOsc) || is_field(field, db::field::kLocOsc0);
    return by_oscillator && columns.contains(QLatin1String(kOscillatorColumn));
}

}  // namespace

std::optional<int> number_of(const programme::ProgramRecord& record) {
    const QString text = record.pg_num.trimmed();
    if (!programme::is_number(text)) return std::nullopt;
    const double number = link::typed_value(text);
    if (link::typed_value(checked_program_number(text)) != number) return std::nullopt;
    return static_cast<int>(number);
}

NumberedPrograms named_programs(const std::vector<programme::ProgramRecord>& programs,
                                const std::vector<ImportCandidate>& candidates) {
    NumberedPrograms all;
    for (const programme::ProgramRecord& program : programs)
        if (const auto number = number_of(program)) all.emplace(*number, program);
    NumberedPrograms named;
    for (const ImportCandidate& candidate : candidates) {
        const auto number = number_of(candidate.record);
        if (candidate.comes() && number && all.contains(*number))
            named.emplace(*number, all.at(*number));
    }
    return named;
}

void keep_other_columns(programme::ProgramRecord& record, const ImportCandidate& candidate,
                        const programme::ProgramRecord& program) {
    for (const programme::ProgramField& field : programme::program_fields())
        if (!is_in_file(field, candidate.columns))
            programme::set_field(record, field, programme::field_text(program, field));
}

void keep_unedited(programme::ProgramRecord& record, const ImportCandidate& candidate,
                   const programme::ProgramRecord& program, bool same_tuning) {
    for (const programme::ProgramField& field : programme::program_fields()) {
        if (is_field(field, db::field::kLocOsc0)) continue;
        if (is_field(field, db::field::kFrequenza) && !same_tuning) continue;
        const QString stored = programme::field_text(program, field);
        const bool unset =
            stored.isEmpty() && candidate.empty_cells.contains(QLatin1String(field.name));
        if (unset || is_same_value(programme::field_text(candidate.record, field), stored))
            programme::set_field(record, field, stored);
    }
}

}  // namespace m47::plans
