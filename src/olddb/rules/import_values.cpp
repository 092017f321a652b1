// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_values.h"

#include <QLocale>
#include <array>
#include <cmath>

#include "diseqc_commands.h"
#include "fields.h"
#include "program_limits.h"

namespace m47::olddb {
namespace {

using Verdict = ImportedValue::Verdict;

/// A text field whose rows are found by the number in it, written with a fixed number of digits.
struct NumberKey {
    const char* field;
    int minimum;
    int maximum;
    int digits;
};
constexpr std::array kNumberKeys{
    NumberKey{db::field::kPgNum, 0, programme::kHighestProgram, 3},
    NumberKey{db::field::kLoggerPos, 1, programme::kLastLoggerLine, 2}};

/// A whole number that stands for one of `choices` places of a list.
struct Choice {
    const char* field;
    int choices;
};
constexpr std::array kChoices{
    Choice{db::field::kLocOsc0, static_cast<int>(db::field::kOscillators.size())},
    Choice{db::field::kLnbVolt, programme::kSupplyChoices},
    Choice{db::field::kDiseqcCmd, static_cast<int>(programme::kDiseqcCommands.size())},
    Choice{db::field::kDiseqcCmd2, static_cast<int>(programme::kDiseqcCommands.size())},
};
// The other whole numbers are 0 or 1.

constexpr double kFrequencySteps = 10;  // of one MHz

template <class Entries>
auto* entry_of(const Entries& entries, const char* field) {
    for (const auto& entry : entries)
        if (qstrcmp(entry.field, field) == 0) return &entry;
    return static_cast<decltype(&entries[0])>(nullptr);
}

bool same(const QVariant& one, const QVariant& other) {
    return one.typeId() == other.typeId() && one == other;
}

ImportedValue compared(const QVariant& value, const QVariant& old) {
    return {value, same(value, old) ? Verdict::as_it_was : Verdict::corrected};
}

/// The number that `old` is or holds as text; `good` false where there is none.
double number_of(const QVariant& old, bool& good) {
    good = true;
    if (old.typeId() != QMetaType::QString) return old.toDouble();
    QString text = old.toString().trimmed();
    const double number = text.replace(u',', u'.').toDouble(&good);
    good = good && std::isfinite(number);
    return good ? number : 0;
}

ImportedValue key_value(const NumberKey& key, const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) return compared(trimmed, text);
    bool good = false;
    const int number = trimmed.toInt(&good);
    if (!good || number < key.minimum || number > key.maximum) return {text, Verdict::doubtful};
    return compared(QStringLiteral("%1").arg(number, key.digits, 10, QLatin1Char('0')), text);
}

ImportedValue text_value(const db::Field& field, const QVariant& old) {
    // Kept as a number by another edition of the old program: the same value in other clothes.
    const QString text =
        old.typeId() == QMetaType::Bool ? QString::number(old.toInt()) : shown_value(old);
    const NumberKey* key = entry_of(kNumberKeys, field.name);
    if (!key) return {text, Verdict::as_it_was};
    return key_value(*key, text);
}

ImportedValue number_value(const db::Field& field, const QVariant& old) {
    bool good = false;
    const double number = number_of(old, good);
    if (!good) return {QVariant(), Verdict::corrected};
    if (qstrcmp(field.name, db::field::kFrequenza) != 0) return {number, Verdict::as_it_was};
    const double rounded = std::round(number * kFrequencySteps) / kFrequencySteps;
    return {rounded, qFuzzyCompare(rounded, number) ? Verdict::as_it_was : Verdict::corrected};
}

ImportedValue whole_value(const db::Field& field, const QVariant& old) {
    bool good = false;
    const double number = number_of(old, good);
    const Choice* list = entry_of(kChoices, field.name);
    const int choices = list ? list->choices : 2;
    double place = std::trunc(number);
    // The old engine's true is -1.
    if (!list && place != 0) place = 1;
    // No choice was made: the program keeps that as the first.
    if (!good || place < 0 || place >= choices) place = 0;
    const bool as_it_was = good && place == number;
    return {static_cast<qlonglong>(place), as_it_was ? Verdict::as_it_was : Verdict::corrected};
}

ImportedValue boolean_value(const QVariant& old) {
    bool good = false;
    const double number = number_of(old, good);
    return {QVariant(number != 0), good ? Verdict::as_it_was : Verdict::corrected};
}

}  // namespace

QString shown_value(const QVariant& value) {
    if (value.typeId() == QMetaType::Double)
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return value.toString();
}

ImportedValue value_for(const db::Field& field, const QVariant& old) {
    if (old.isNull()) return {QVariant(), Verdict::as_it_was};
    switch (field.kind) {
        case db::FieldKind::number:
            return number_value(field, old);
        case db::FieldKind::whole:
            return whole_value(field, old);
        case db::FieldKind::boolean:
            return boolean_value(old);
        case db::FieldKind::text:
            break;
    }
    return text_value(field, old);
}

}  // namespace m47::olddb
