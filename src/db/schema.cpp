// SPDX-License-Identifier: GPL-3.0-or-later
#include "schema.h"

#include <algorithm>
#include <array>

#include "fault.h"
#include "fields.h"
#include "tables.h"

namespace m47::db {
namespace {

using enum FieldKind;

// One row a plan. A plan's name is kept trimmed and in upper case and ties the tables together.
constexpr std::array kGruppo{Field{field::kNome, text}};
constexpr std::array kGruppoIndices{Index{{field::kNome}, true}};

// One row a plan: what its programs share.
constexpr std::array kConfigurazione{
    Field{field::kNome, text},
    // The local oscillators its programs choose from, MHz.
    Field{field::kOscillators[0], number},
    Field{field::kOscillators[1], number},
    Field{field::kOscillators[2], number},
    Field{field::kOscillators[3], number},
    // The plan's own switch entries, in the order of the list.
    Field{field::kUserSwitches[0], text},
    Field{field::kUserSwitches[1], text},
    Field{field::kUserSwitches[2], text},
    Field{field::kUserSwitches[3], text},
};
constexpr std::array kConfigurazioneIndices{Index{{field::kNome}, false}};

// One row a program of a plan. Texts that hold a number are kept as they stand on the screen.
constexpr std::array kProgrammi{
    Field{field::kNome, text},
    // Number in the meter, "000" to "099"; unique within the plan.
    Field{field::kPgNum, text},
    // Tuning frequency, MHz with one decimal; the sky frequency unless `loc_osc`.
    Field{field::kFrequenza, number},
    // Direct tuning; otherwise through the plan's local oscillator number `loc_osc0` (0 to 3).
    Field{field::kLocOsc, boolean},
    Field{field::kLocOsc0, whole},
    // 1: digital (QPSK) acquisition; 0: analog.
    Field{field::kSatAd, whole},
    // kS/s.
    Field{field::kQpskSymbolrate, text},
    // Bandwidth of the channel power measurement, MHz.
    Field{field::kSatchbw, number},
    // Places in the list of DiSEqC commands.
    Field{field::kDiseqcCmd, whole},
    Field{field::kDiseqcCmd2, whole},
    // LNB supply: 0 off, 1 13 V, 2 18 V; the 22 kHz tone: 0 off, 1 on.
    Field{field::kLnbVolt, whole},
    Field{field::kK22, whole},
    // Line in the meter's logger table, two digits or empty; unique within the plan.
    Field{field::kLoggerPos, text},
    // 1: active in the meter's logger table; 1: takes part in monitored acquisition.
    Field{field::kLoggerState, whole},
    Field{field::kMonitorState, whole},
    // Alarm limits: level in the unit of the screen, C/N in dB, channel BER such as "1E-8", MER
    // in dB.
    Field{field::kLevMin, text},
    Field{field::kLevMax, text},
    Field{field::kNoiseMin, text},
    Field{field::kNoiseMax, text},
    Field{field::kChberMin, text},
    Field{field::kChberMax, text},
    Field{field::kMerMin, text},
    Field{field::kMerMax, text},
};
// Number and position are unique by the checks of the plan screen, which may let a duplicate
// through: the file must not refuse what the screen stores.
constexpr std::array kProgrammiIndices{
    Index{{field::kNome}, false},
    Index{{field::kNome, field::kPgNum}, false},
    Index{{field::kNome, field::kLoggerPos}, false},
};

// One row a satellite kept on the PC: its name and its slot's data block as S-records.
constexpr std::array kAsl{
    Field{field::kNome, text},
    Field{field::kDati, text},
};
constexpr std::array kAslIndices{Index{{field::kNome}, false}};

const std::array kTables{
    Table{table::kProgrammi, kProgrammi, kProgrammiIndices},
    Table{table::kConfigurazione, kConfigurazione, kConfigurazioneIndices},
    Table{table::kGruppo, kGruppo, kGruppoIndices},
    Table{table::kAsl, kAsl, kAslIndices},
};

const char* storage_of(FieldKind kind) {
    switch (kind) {
        case text:
            return "TEXT";
        case number:
            return "REAL";
        case whole:
        case boolean:
            break;
    }
    return "INTEGER";
}

QString fields_of_index(const Index& index) {
    QStringList names;
    for (const char* name : index.fields)
        if (name != nullptr) names += QString::fromLatin1(name);
    return names.join(QStringLiteral(", "));
}

QString index_statement(const Table& table, const Index& index, qsizetype number) {
    return QStringLiteral("CREATE %1INDEX %2_%3 ON %2 (%4)")
        .arg(QLatin1String(index.unique ? "UNIQUE " : ""), QLatin1String(table.name),
             QString::number(number), fields_of_index(index));
}

}  // namespace

std::span<const Table> schema() {
    return kTables;
}

const Table& table_named(const QString& name) {
    for (const Table& table : kTables)
        if (name == QLatin1String(table.name)) return table;
    throw Fault("the database has no table '" + name.toStdString() + "'");
}

std::size_t field_place(const Table& table, const QString& field) {
    const auto place = std::ranges::find_if(
        table.fields, [&](const Field& one) { return field == QLatin1String(one.name); });
    if (place == table.fields.end())
        throw Fault("the table '" + std::string(table.name) + "' has no field '" +
                    field.toStdString() + "'");
    return static_cast<std::size_t>(place - table.fields.begin());
}

QString checked_field(const Table& table, const QString& field) {
    static_cast<void>(field_place(table, field));
    return field;
}

QString field_list(const Table& table) {
    QStringList names;
    for (const Field& field : table.fields) names += QString::fromLatin1(field.name);
    return names.join(QStringLiteral(", "));
}

QStringList creation_statements(const Table& table) {
    QStringList columns;
    for (const Field& field : table.fields)
        columns += QStringLiteral("%1 %2").arg(QLatin1String(field.name),
                                               QLatin1String(storage_of(field.kind)));
    // The row's identity: it survives every reorganisation of the file and is never given to
    // another row, so that a deleted row is not mistaken for a new one.
    columns += QStringLiteral("id INTEGER PRIMARY KEY AUTOINCREMENT");
    QStringList statements{QStringLiteral("CREATE TABLE %1 (%2)")
                               .arg(QLatin1String(table.name), columns.join(QStringLiteral(", ")))};
    for (const Index& index : table.indices)
        statements += index_statement(table, index, statements.size());
    return statements;
}

}  // namespace m47::db
