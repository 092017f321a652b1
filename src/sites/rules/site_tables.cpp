// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_tables.h"

#include "margin.h"
#include "row_time.h"
#include "tab_lines.h"

namespace m47::sites {
namespace {

using measurement::Measurement;
using measurement::Quantity;

constexpr Bilingual kTableProgram{"Program", "Programma"};
constexpr Bilingual kTableSite{"Site", "Sito"};
constexpr Bilingual kTableTime{"Date and time", "Data e ora"};
constexpr Bilingual kTableUnit{"Unit", "Unità"};
constexpr Bilingual kTableBefore{"%1 before", "%1 prima"};
constexpr Bilingual kTableNow{"%1 now", "%1 ora"};
constexpr Bilingual kTableChange{"%1 change", "%1 differenza"};
constexpr Bilingual kTableAlarm{"Margin to alarm, dB", "Margine sull'allarme, dB"};
constexpr Bilingual kTableFree{"Margin to QEF, dB", "Margine sul QEF, dB"};
constexpr Bilingual kTableMeaning{"Meaning", "Significato"};
constexpr Bilingual kTableSince{"Since", "Dal"};
constexpr Bilingual kTableUntil{"Until", "Al"};
constexpr Bilingual kTableVerdict{"Verdict", "Esito"};
constexpr Bilingual kLevelName{"Level", "Livello"};

QString name_of(Quantity quantity, const Texts& texts) {
    switch (quantity) {
        case Quantity::level:
            return texts.pick(kLevelName);
        case Quantity::cn:
            return QStringLiteral("C/N");
        case Quantity::mer:
            return QStringLiteral("MER");
        case Quantity::ber:
            return QStringLiteral("BER");
        case Quantity::pvber:
            return QStringLiteral("PVBER");
        case Quantity::cfo:
            return QStringLiteral("CFO");
        default:
            return QStringLiteral("N");
    }
}

/// As it was shown, a level with its unit, since two visits may differ in that.
QString cell_of(Quantity quantity, const std::optional<VisitMeasurement>& one) {
    if (!one) return {};
    const measurement::Reading& reading = one->measurement.reading(quantity);
    QString cell = measurement::reading_text(quantity, reading);
    if (quantity == Quantity::level && reading.measured() && one->measurement.unit)
        cell += u' ' + measurement::unit_text(one->measurement.unit);
    return cell;
}

QString time_cell(const std::optional<VisitMeasurement>& one) {
    if (!one) return {};
    return QString::fromStdString(measurement::time_text(one->instant.wall()));
}

QStringList margin_cells(const std::optional<VisitMeasurement>& one, const CodeRateOf& code_rate) {
    if (!one) return {QString(), QString()};
    const Margins margins =
        margins_of(one->measurement, code_rate ? code_rate(one->measurement) : std::nullopt);
    return {measurement::margin_text(margins.alarm),
            measurement::margin_text(margins.quasi_error_free)};
}

QStringList margin_headings(const Texts& texts) {
    return {texts.pick(kTableAlarm), texts.pick(kTableFree)};
}

}  // namespace

QByteArray ShownTable::tsv() const {
    return tab_table(heading, rows);
}

ShownTable comparison_table(const std::vector<ProgramComparison>& compared,
                            const CodeRateOf& code_rate, const Texts& texts) {
    ShownTable table{{texts.pick(kTableProgram), texts.pick(kTableMeaning)}, {}};
    for (const Quantity quantity : kComparedQuantities)
        for (const Bilingual& words : {kTableBefore, kTableNow, kTableChange})
            table.heading += texts.pick(words).arg(name_of(quantity, texts));
    table.heading += margin_headings(texts);
    for (const ProgramComparison& program : compared) {
        QStringList cells{program.key.name(), meaning_text(program.meaning, texts)};
        for (const Quantity quantity : kComparedQuantities)
            cells += {cell_of(quantity, program.earlier), cell_of(quantity, program.later),
                      change_text(program.change(quantity))};
        table.rows += cells + margin_cells(program.later, code_rate);
    }
    return table;
}

ShownTable worse_table(const std::vector<GotWorse>& worse, const Texts& texts) {
    ShownTable table{{texts.pick(kTableSite), texts.pick(kTableProgram), texts.pick(kTableMeaning)},
                     {}};
    for (const Quantity quantity : {Quantity::level, Quantity::mer})
        table.heading += texts.pick(kTableChange).arg(name_of(quantity, texts));
    table.heading += {texts.pick(kTableSince), texts.pick(kTableUntil)};
    for (const GotWorse& one : worse) {
        const ProgramComparison& program = one.program;
        table.rows += {one.site.name,
                       program.key.name(),
                       meaning_text(program.meaning, texts),
                       change_text(program.change(Quantity::level)),
                       change_text(program.change(Quantity::mer)),
                       time_cell(program.earlier),
                       time_cell(program.later)};
    }
    return table;
}

ShownTable rows_table(const std::vector<VisitMeasurement>& rows, const CodeRateOf& code_rate,
                      const Texts& texts) {
    constexpr std::array kShownOfRow{Quantity::level, Quantity::cn,  Quantity::mer,  Quantity::ber,
                                     Quantity::pvber, Quantity::cfo, Quantity::noise};
    ShownTable table{{texts.pick(kTableTime), texts.pick(kTableProgram), texts.pick(kTableUnit)},
                     {}};
    for (const Quantity quantity : kShownOfRow) table.heading += name_of(quantity, texts);
    table.heading += margin_headings(texts) << texts.pick(kTableVerdict);
    for (const VisitMeasurement& row : rows) {
        const Measurement& measured = row.measurement;
        QStringList cells{time_cell(row), measurement::series_key(measured).name(),
                          measurement::unit_text(measured.unit)};
        for (const Quantity quantity : kShownOfRow)
            cells += measurement::reading_text(quantity, measured.reading(quantity));
        cells += margin_cells(row, code_rate);
        table.rows += cells << measurement::verdict_text(measured.verdict);
    }
    return table;
}

}  // namespace m47::sites
