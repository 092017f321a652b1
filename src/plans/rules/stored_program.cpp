// SPDX-License-Identifier: GPL-3.0-or-later
#include "stored_program.h"

#include <algorithm>
#include <utility>

#include "fields.h"
#include "numbers.h"

namespace m47::plans {
namespace {

constexpr Bilingual kChangedMeanwhile{
    "Another program has changed meanwhile what was shown here. Nothing was stored.",
    "Nel frattempo un altro programma ha modificato ciò che era mostrato qui. Nulla è stato "
    "memorizzato."};

constexpr Bilingual kRemovalChanged{
    "Another program has changed meanwhile what was to be deleted. Nothing was deleted.",
    "Nel frattempo un altro programma ha modificato ciò che era da cancellare. Nulla è stato "
    "cancellato."};

bool same_oscillator(const QString& one, const QString& other) {
    const bool none = one.trimmed().isEmpty();
    return none == other.trimmed().isEmpty() &&
           (none || link::typed_value(one) == link::typed_value(other));
}

/// The program of `row` among `rows`; where it is not there, one of which nothing is set.
programme::ProgramRecord program_of(const RemovedRows& rows, db::Bookmark row) {
    const auto found = rows.programs.find(row);
    if (found != rows.programs.end()) return found->second;
    programme::ProgramRecord nothing;
    nothing.diseqc_cmd = nothing.diseqc_cmd2 = kNoDiseqcChosen;
    return nothing;
}

void add_program_changes(const programme::ProgramRecord& stored,
                         const programme::ProgramRecord& shown, QList<ChangedField>& fields) {
    for (const programme::ProgramField& field : programme::program_fields()) {
        const QString now = programme::field_text(stored, field);
        const QString seen = programme::field_text(shown, field);
        if (now != seen) fields += {field.name, now, seen, stored.pg_num};
    }
}

}  // namespace

ChangedMeanwhile::ChangedMeanwhile(StoredProgram in_file, programme::ProgramRecord typed,
                                   QString typed_oscillator, bool replaces)
    : Fault(kChangedMeanwhile),
      now(std::move(in_file)),
      program(std::move(typed)),
      oscillator(std::move(typed_oscillator)),
      over(replaces) {
    // As it would be read again.
    programme::give_box_form(program);
}

RemovalChanged::RemovalChanged(RemovedRows in_file, RemovedRows known)
    : Fault(kRemovalChanged), now(std::move(in_file)), seen(std::move(known)) {}

QList<ChangedField> changed_fields(const RemovalChanged& change) {
    QList<ChangedField> fields;
    for (const auto& [row, program] : change.now.programs)
        add_program_changes(program, program_of(change.seen, row), fields);
    for (std::size_t entry = 0; entry < db::field::kOscillators.size(); ++entry) {
        const QString& stored = change.now.oscillators[entry];
        const QString& shown = change.seen.oscillators[entry];
        if (!same_oscillator(stored, shown))
            fields += {db::field::kOscillators[entry], stored, shown, QString()};
    }
    return fields;
}

void need_unchanged(const RemovedRows& seen, const RemovedRows& now) {
    const bool same = std::ranges::all_of(now.programs, [&](const auto& row) {
        const auto known = seen.programs.find(row.first);
        return known != seen.programs.end() && known->second == row.second;
    });
    if (!same || now.oscillators != seen.oscillators) throw RemovalChanged(now, seen);
}

QList<ChangedField> changed_fields(const ChangedMeanwhile& change) {
    QList<ChangedField> fields;
    if (change.over)
        for (const programme::ProgramField& field : programme::program_fields()) {
            const QString stored = programme::field_text(change.now.program, field);
            const QString typed = programme::field_text(change.program, field);
            if (stored != typed) fields += {field.name, stored, typed, QString()};
        }
    const std::size_t entry = programme::oscillator_entry(change.program);
    const QString stored = change.now.oscillators[entry];
    if (!same_oscillator(stored, change.oscillator))
        fields += {db::field::kOscillators[entry], stored, change.oscillator, QString()};
    return fields;
}

void need_unchanged(const StoredProgram& known, const ChangedMeanwhile& change) {
    const StoredProgram& now = change.now;
    const std::size_t entry = programme::oscillator_entry(change.program);
    const bool program =
        change.over && now.program != known.program && now.program != change.program;
    const bool oscillator = now.oscillators[entry] != known.oscillators[entry] &&
                            !same_oscillator(now.oscillators[entry], change.oscillator);
    if (program || oscillator) throw change;
}

}  // namespace m47::plans
