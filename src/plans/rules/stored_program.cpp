// SPDX-License-Identifier: GPL-3.0-or-later
#include "stored_program.h"

#include <utility>

#include "fields.h"
#include "numbers.h"

namespace m47 {
namespace {

constexpr Bilingual kChangedMeanwhile{
    "Another program has changed meanwhile what was shown here. Nothing was stored.",
    "Nel frattempo un altro programma ha modificato ciò che era mostrato qui. Nulla è stato "
    "memorizzato."};

bool same_oscillator(const QString& one, const QString& other) {
    const bool none = one.trimmed().isEmpty();
    return none == other.trimmed().isEmpty() && (none || typed_value(one) == typed_value(other));
}

}  // namespace

ChangedMeanwhile::ChangedMeanwhile(StoredProgram in_file, ProgramRecord typed,
                                   QString typed_oscillator, bool replaces)
    : Fault(kChangedMeanwhile),
      now(std::move(in_file)),
      program(std::move(typed)),
      oscillator(std::move(typed_oscillator)),
      over(replaces) {
    // As it would be read again.
    give_box_form(program);
}

QList<ChangedField> changed_fields(const ChangedMeanwhile& change) {
    QList<ChangedField> fields;
    if (change.over)
        for (const ProgramField& field : program_fields()) {
            const QString stored = field_text(change.now.program, field);
            const QString typed = field_text(change.program, field);
            if (stored != typed) fields += {field.name, stored, typed};
        }
    const std::size_t entry = oscillator_entry(change.program);
    const QString stored = change.now.oscillators[entry];
    if (!same_oscillator(stored, change.oscillator))
        fields += {field::kOscillators[entry], stored, change.oscillator};
    return fields;
}

void need_unchanged(const StoredProgram& known, const ChangedMeanwhile& change) {
    const StoredProgram& now = change.now;
    const std::size_t entry = oscillator_entry(change.program);
    const bool program =
        change.over && now.program != known.program && now.program != change.program;
    const bool oscillator = now.oscillators[entry] != known.oscillators[entry] &&
                            !same_oscillator(now.oscillators[entry], change.oscillator);
    if (program || oscillator) throw change;
}

}  // namespace m47
