// SPDX-License-Identifier: GPL-3.0-or-later
#include "record_edits.h"

#include <algorithm>

#include "program_checks.h"

namespace m47::plans {
namespace {

/// As its boxes are after somebody has gone through them without typing. Each is left alone or with
/// the others, so what has been written in some of them is taken too.
void take_what_leaving_writes(programme::ProgramRecord& shown,
                              const programme::ProgramRecord& typed, const QString& oscillator) {
    const auto take = [&](QString programme::ProgramRecord::*box, const QString& left) {
        if (typed.*box == left) shown.*box = left;
    };
    take(&programme::ProgramRecord::pg_num, checked_program_number(shown.pg_num));
    take(&programme::ProgramRecord::frequenza,
         checked_frequency(shown.frequenza, shown.loc_osc, oscillator));
    take(&programme::ProgramRecord::qpsk_symbolrate, checked_symbol_rate(shown.qpsk_symbolrate));
    take(&programme::ProgramRecord::satchbw, bandwidth_on_leaving(shown.satchbw));
}

}  // namespace

bool is_edited(const BoxedProgram& typed, const BoxedProgram& shown) {
    BoxedProgram left = shown;
    take_what_leaving_writes(left.record, typed.record, shown.oscillator);
    return typed != left;
}

BoxedProgram with_edits(const BoxedProgram& typed, const BoxedProgram& shown,
                        const BoxedProgram& now) {
    BoxedProgram merged = now;
    for (const programme::ProgramField& field : programme::program_fields()) {
        const QString entry = programme::field_text(typed.record, field);
        if (entry != programme::field_text(shown.record, field))
            programme::set_field(merged.record, field, entry);
    }
    if (typed.oscillator != shown.oscillator) merged.oscillator = typed.oscillator;
    return merged;
}

bool edits_clash(const BoxedProgram& typed, const BoxedProgram& shown, const BoxedProgram& now) {
    const auto differs = [](const QString& entry, const QString& before, const QString& after) {
        return entry != before && after != before && after != entry;
    };
    if (differs(typed.oscillator, shown.oscillator, now.oscillator)) return true;
    return std::ranges::any_of(programme::program_fields(), [&](const auto& field) {
        return differs(programme::field_text(typed.record, field),
                       programme::field_text(shown.record, field),
                       programme::field_text(now.record, field));
    });
}

}  // namespace m47::plans
