// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_record.h"

#include <QRegularExpression>
#include <algorithm>

#include "diseqc_commands.h"
#include "numbers.h"

namespace m47 {
namespace {

using R = ProgramRecord;

const std::array kProgramFields{
    ProgramField{"pg_num", &R::pg_num},
    ProgramField{"frequenza", &R::frequenza},
    ProgramField{"loc_osc", &R::loc_osc},
    ProgramField{"loc_osc0", &R::loc_osc0},
    ProgramField{"sat_ad", &R::sat_ad},
    ProgramField{"qpsk_symbolrate", &R::qpsk_symbolrate},
    ProgramField{"satchbw", &R::satchbw},
    ProgramField{"diseqc_cmd", &R::diseqc_cmd},
    ProgramField{"diseqc_cmd2", &R::diseqc_cmd2},
    ProgramField{"lnb_volt", &R::lnb_volt},
    ProgramField{"K22", &R::K22},
    ProgramField{"logger_pos", &R::logger_pos},
    ProgramField{"logger_state", &R::logger_state},
    ProgramField{"monitor_state", &R::monitor_state},
    ProgramField{"lev_min", &R::lev_min},
    ProgramField{"lev_max", &R::lev_max},
    ProgramField{"noise_min", &R::noise_min},
    ProgramField{"noise_max", &R::noise_max},
    ProgramField{"chber_min", &R::chber_min},
    ProgramField{"chber_max", &R::chber_max},
    ProgramField{"mer_min", &R::mer_min},
    ProgramField{"mer_max", &R::mer_max},
};

/// Far more than any list has entries, and still a whole number.
constexpr double kLargestIndex = 1e6;

int whole(const QString& text) {
    return static_cast<int>(std::clamp(typed_value(text), -kLargestIndex, kLargestIndex));
}

QString oscillator_field(int index) {
    return QStringLiteral("loc_osc%1").arg(index + 1);
}

bool unset(const Recordset& set, const char* field) {
    return set.text(QString::fromLatin1(field)).trimmed().isEmpty();
}

QVariant number_or_unset(const QString& text) {
    return text.trimmed().isEmpty() ? QVariant() : QVariant(typed_value(text));
}

}  // namespace

std::span<const ProgramField> program_fields() {
    return kProgramFields;
}

QString field_text(const ProgramRecord& record, const ProgramField& field) {
    if (const auto* text = std::get_if<QString R::*>(&field.member)) return record.**text;
    if (const auto* number = std::get_if<int R::*>(&field.member))
        return QString::number(record.**number);
    return record.*std::get<bool R::*>(field.member) ? QStringLiteral("1") : QStringLiteral("0");
}

bool is_number(const QString& text) {
    static const QRegularExpression kNumber(
        QStringLiteral("^\\s*[-+]?(\\d+[.,]?\\d*|[.,]\\d+)([eE][-+]?\\d+)?\\s*$"));
    return kNumber.match(text).hasMatch();
}

double box_value(const QString& text) {
    return meter_value(QString(text).replace(u',', u'.'));
}

QString number_text(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) return {};
    return is_number(trimmed) ? QString(trimmed).replace(u',', u'.')
                              : plain_text(box_value(trimmed));
}

void set_field(ProgramRecord& record, const ProgramField& field, const QString& text) {
    if (const auto* target = std::get_if<QString R::*>(&field.member))
        record.** target = text.trimmed();
    else if (const auto* number = std::get_if<int R::*>(&field.member))
        record.** number = whole(text);
    else
        record.*std::get<bool R::*>(field.member) = typed_value(text) != 0;
}

QString frequency_box_text(double mhz, bool direct) {
    return format_number(mhz, direct ? "0.0" : "0");
}

ProgramRecord read_program(const Recordset& set, int unset_diseqc) {
    ProgramRecord record;
    for (const ProgramField& field : kProgramFields)
        set_field(record, field, set.text(QString::fromLatin1(field.name)));
    // 1 alone is digital.
    record.sat_ad = typed_value(set.text(QStringLiteral("sat_ad"))) == 1;
    if (!record.frequenza.isEmpty())
        record.frequenza = frequency_box_text(typed_value(record.frequenza), record.loc_osc);
    if (!record.satchbw.isEmpty())
        record.satchbw = format_number(typed_value(record.satchbw), "00");
    if (unset(set, "diseqc_cmd")) record.diseqc_cmd = unset_diseqc;
    if (unset(set, "diseqc_cmd2")) record.diseqc_cmd2 = unset_diseqc;
    return record;
}

void write_program(Recordset& set, const ProgramRecord& record) {
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
    set.set(QStringLiteral("frequenza"), number_or_unset(record.frequenza));
    set.set(QStringLiteral("satchbw"), typed_value(record.satchbw));
}

Oscillators read_oscillators(const Recordset& set) {
    Oscillators oscillators;
    for (std::size_t index = 0; index < oscillators.size(); ++index) {
        const QVariant value = set.value(oscillator_field(static_cast<int>(index)));
        if (!value.isNull()) oscillators[index] = plain_text(typed_value(value.toString()));
    }
    return oscillators;
}

void write_oscillator(Recordset& set, int index, const QString& text) {
    set.set(oscillator_field(index), number_or_unset(text));
}

bool is_blank(const ProgramRecord& record) {
    ProgramRecord rest = record;
    for (int* command : {&rest.diseqc_cmd, &rest.diseqc_cmd2})
        if (*command == kDiseqcNone) *command = 0;
    return rest == ProgramRecord();
}

}  // namespace m47
