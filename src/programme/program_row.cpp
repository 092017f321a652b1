// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_row.h"

#include <algorithm>

#include "diseqc_commands.h"
#include "numbers.h"

namespace m47::programme {

QString ProgramRow::text(const ProgramField::Member& field) const {
    return set_.text(field_name(field));
}

bool ProgramRow::has(const ProgramField::Member& field) const {
    return !text(field).trimmed().isEmpty();
}

double ProgramRow::number(const ProgramField::Member& field) const {
    return link::typed_value(text(field));
}

int ProgramRow::whole(const ProgramField::Member& field) const {
    return whole_number(text(field));
}

QString ProgramRow::plain(const ProgramField::Member& field) const {
    return has(field) ? link::plain_text(number(field)) : QString();
}

std::optional<int> ProgramRow::oscillator() const {
    if (!has(&ProgramRecord::loc_osc0)) return std::nullopt;
    return oscillator_entry(whole(&ProgramRecord::loc_osc0));
}

std::optional<bool> ProgramRow::digital() const {
    const int choice = whole(&ProgramRecord::sat_ad);
    if (!has(&ProgramRecord::sat_ad) || choice < 0 || choice > 1) return std::nullopt;
    return choice == 1;
}

QList<int> ProgramRow::diseqc() const {
    QList<int> places;
    for (const auto command : {&ProgramRecord::diseqc_cmd, &ProgramRecord::diseqc_cmd2})
        if (has(command) && whole(command) != kDiseqcNone) places += whole(command);
    return places;
}

}  // namespace m47::programme
