// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_record.h"

#include <algorithm>

#include "box_numbers.h"
#include "diseqc_commands.h"
#include "fields.h"
#include "numbers.h"
#include "program_row.h"

namespace m47::programme {
namespace {

using R = ProgramRecord;

const std::array kProgramFields{
    ProgramField{db::field::kPgNum, &R::pg_num},
    ProgramField{db::field::kFrequenza, &R::frequenza},
    ProgramField{db::field::kLocOsc, &R::loc_osc},
    ProgramField{db::field::kLocOsc0, &R::loc_osc0},
    ProgramField{db::field::kSatAd, &R::sat_ad},
    ProgramField{db::field::kQpskSymbolrate, &R::qpsk_symbolrate},
    ProgramField{db::field::kSatchbw, &R::satchbw},
    ProgramField{db::field::kDiseqcCmd, &R::diseqc_cmd},
    ProgramField{db::field::kDiseqcCmd2, &R::diseqc_cmd2},
    ProgramField{db::field::kLnbVolt, &R::lnb_volt},
    ProgramField{db::field::kK22, &R::K22},
    ProgramField{db::field::kLoggerPos, &R::logger_pos},
    ProgramField{db::field::kLoggerState, &R::logger_state},
    ProgramField{db::field::kMonitorState, &R::monitor_state},
    ProgramField{db::field::kLevMin, &R::lev_min},
    ProgramField{db::field::kLevMax, &R::lev_max},
    ProgramField{db::field::kNoiseMin, &R::noise_min},
    ProgramField{db::field::kNoiseMax, &R::noise_max},
    ProgramField{db::field::kChberMin, &R::chber_min},
    ProgramField{db::field::kChberMax, &R::chber_max},
    ProgramField{db::field::kMerMin, &R::mer_min},
    ProgramField{db::field::kMerMax, &R::mer_max},
};

/// Far more than any list has entries, and still a whole number.
constexpr double kLargestIndex = 1e6;

/// What `number` says in a field that knows yes and no alone.
bool says_yes(const ProgramField& field, double number) {
    const bool digital = field.member == ProgramField::Member(&R::sat_ad);
    return digital ? number == 1 : number != 0;
}

QVariant number_or_unset(const QString& text) {
    return text.trimmed().isEmpty() ? QVariant() : QVariant(link::typed_value(text));
}

}  // namespace

std::span<const ProgramField> program_fields() {
    return kProgramFields;
}

const char* field_name(const ProgramField::Member& member) {
    const auto field = std::ranges::find(kProgramFields, member, &ProgramField::member);
    if (field == kProgramFields.end()) throw Fault("a program's member without a field");
    return field->name;
}

int whole_number(const QString& text) {
    return static_cast<int>(std::clamp(link::typed_value(text), -kLargestIndex, kLargestIndex));
}

std::size_t oscillator_entry(const ProgramRecord& record) {
    return static_cast<std::size_t>(oscillator_entry(record.loc_osc0));
}

QString field_text(const ProgramRecord& record, const ProgramField& field) {
    if (const auto* text = std::get_if<QString R::*>(&field.member)) return record.**text;
    if (const auto* number = std::get_if<int R::*>(&field.member))
        return QString::number(record.**number);
    return record.*std::get<bool R::*>(field.member) ? QStringLiteral("1") : QStringLiteral("0");
}

void set_field(ProgramRecord& record, const ProgramField& field, const QString& text) {
    if (const auto* target = std::get_if<QString R::*>(&field.member))
        record.** target = text.trimmed();
    else if (const auto* number = std::get_if<int R::*>(&field.member))
        record.** number = whole_number(text);
    else
        record.*std::get<bool R::*>(field.member) = says_yes(field, link::typed_value(text));
}

void give_box_form(ProgramRecord& record) {
    if (!record.frequenza.isEmpty())
        record.frequenza = frequency_box_text(link::typed_value(record.frequenza), record.loc_osc);
    if (!record.satchbw.isEmpty())
        record.satchbw = bandwidth_box_text(link::typed_value(record.satchbw));
}

ProgramRecord read_program(const db::Recordset& set, int unset_diseqc) {
    const ProgramRow row(set);
    ProgramRecord record;
    for (const ProgramField& field : kProgramFields) set_field(record, field, set.text(field.name));
    give_box_form(record);
    for (const auto command : {&R::diseqc_cmd, &R::diseqc_cmd2})
        if (!row.has(command)) record.*command = unset_diseqc;
    return record;
}

void write_program(db::Recordset& set, const ProgramRecord& record) {
    for (const ProgramField& field : kProgramFields) {
        QVariant value;
        if (const auto* text = std::get_if<QString R::*>(&field.member))
            value = (record.**text).trimmed();
        else if (const auto* number = std::get_if<int R::*>(&field.member))
            value = record.**number;
        else
            value = record.*std::get<bool R::*>(field.member) ? 1 : 0;
        set.set(QString::fromLatin1(field.name), value);
    }
    set.set(db::field::kFrequenza, number_or_unset(record.frequenza));
    set.set(db::field::kSatchbw, link::typed_value(record.satchbw));
}

bool is_blank(const ProgramRecord& record) {
    ProgramRecord rest = record;
    for (int* command : {&rest.diseqc_cmd, &rest.diseqc_cmd2})
        if (*command == kDiseqcNone) *command = 0;
    return rest == ProgramRecord();
}

bool is_untuned(const ProgramRecord& record) {
    return record.frequenza.trimmed().isEmpty();
}

}  // namespace m47::programme
