// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_differences.h"

#include "box_numbers.h"
#include "fields.h"
#include "numbers.h"

namespace m47::plans {
namespace {

bool fills_gap(const programme::ProgramField& field, const QString& before) {
    return before.isEmpty() && QLatin1String(field.name) != QLatin1String(db::field::kFrequenza);
}

QStringList differences(const programme::ProgramRecord& before,
                        const programme::ProgramRecord& after, bool with_gaps) {
    QStringList list;
    for (const programme::ProgramField& field : programme::program_fields()) {
        const QString old_text = programme::field_text(before, field);
        const QString new_text = programme::field_text(after, field);
        if (is_same_value(old_text, new_text)) continue;
        if (!with_gaps && fills_gap(field, old_text)) continue;
        list += QStringLiteral("%1: %2 → %3").arg(QLatin1String(field.name), old_text, new_text);
    }
    return list;
}

}  // namespace

bool is_same_value(const QString& one, const QString& other) {
    if (one == other) return true;
    return programme::is_number(one) && programme::is_number(other) &&
           link::typed_value(one) == link::typed_value(other);
}

QStringList program_differences(const programme::ProgramRecord& before,
                                const programme::ProgramRecord& after) {
    return differences(before, after, true);
}

QStringList program_corrections(const programme::ProgramRecord& before,
                                const programme::ProgramRecord& after) {
    return differences(before, after, false);
}

}  // namespace m47::plans
