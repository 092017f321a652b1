// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_tables.h"

#include "margin.h"
#include "quantity_words.h"
#include "row_time.h"
#include "tab_lines.h"

namespace m47::sites {
namespace {

using measurement::Measurement;
using measurement::Quantity;
using measurement::RangeMark;

constexpr Bilingual kTableProgram{"Program", "Programma"};
constexpr Bilingual kTableFrequency{"Frequency", "Frequenza"};
constexpr Bilingual kTableOscillator{"Oscillator", "Oscillatore"};
constexpr Bilingual kTableSite{"Site", "Sito"};
constexpr Bilingual kTableTime{"Date and time", "Data e ora"};
constexpr Bilingual kTableUnit{"Unit", "Unità"};
constexpr Bilingual kTableLimits{"Limits", "Limiti"};
constexpr Bilingual kTableBefore{"%1 before", "%1 prima"};
constexpr Bilingual kTableNow{"%1 now", "%1 ora"};
constexpr Bilingual kTableChange{"%1 change", "%1 diff."};
constexpr Bilingual kTableAlarm{"Alarm margin", "Margine allarme"};
constexpr Bilingual kTableFree{"QEF margin", "Margine QEF"};
constexpr Bilingual kTableMeaning{"Meaning", "Significato"};
constexpr Bilingual kTableSince{"Since", "Dal"};
constexpr Bilingual kTableUntil{"Until", "Al"};
constexpr Bilingual kTableVerdict{"Verdict", "Esito"};

/// Less of a margin, in dB, is used up by the next bad weather.
constexpr double kThinMargin = 1;

/// A column of tables of `Row`s.
template <typename Row>
struct TableColumn {
    std::function<QString(const Texts&)> heading;
    std::function<TableCell(const Row&, const Texts&)> cell;
    bool number = true;
    bool detail = false;
};

template <typename Row>
class ColumnTable : public SiteTable {
  public:
    ColumnTable(std::vector<Row> rows, std::vector<TableColumn<Row>> columns)
        : rows_(std::move(rows)), columns_(std::move(columns)) {}

    QStringList heading(const Texts& texts) const override {
        QStringList names;
        for (const TableColumn<Row>& each : columns_) names += each.heading(texts);
        return names;
    }
    int rows() const override { return static_cast<int>(rows_.size()); }
    TableCell cell(int row, int at, const Texts& texts) const override {
        return column(at).cell(rows_[static_cast<std::size_t>(row)], texts);
    }
    bool is_number(int at) const override { return column(at).number; }
    bool is_detail(int at) const override { return column(at).detail; }

  private:
    const TableColumn<Row>& column(int at) const { return columns_[static_cast<std::size_t>(at)]; }

    std::vector<Row> rows_;
    std::vector<TableColumn<Row>> columns_;
};

auto called(const Bilingual& words) {
    return [words](const Texts& texts) { return texts.pick(words); };
}

/// "Level now": `words` have the place of the quantity's name.
auto called(const Bilingual& words, Quantity quantity) {
    return [words, quantity](const Texts& texts) {
        return texts.pick(words).arg(quantity_text(quantity, texts));
    };
}

TableCell number_cell(const QString& text, double number, Tone tone = Tone::plain) {
    return {text, number, tone};
}

TableCell frequency_cell(const std::optional<float>& mhz) {
    if (!mhz) return {};
    return number_cell(measurement::frequency_text(*mhz), static_cast<double>(*mhz));
}

TableCell time_cell(const std::optional<VisitMeasurement>& one) {
    if (!one) return {};
    return number_cell(QString::fromStdString(measurement::time_text(one->instant.wall())),
                       one->instant.utc);
}

/// As it was shown; what was not within its limits is bad.
TableCell reading_cell(Quantity quantity, const Measurement& measured) {
    const measurement::Reading& reading = measured.reading(quantity);
    const auto value = static_cast<double>(reading.value);
    const auto& limits = measured.limits[static_cast<std::size_t>(quantity)];
    const bool out = limits && reading.measured() && !limits->hold(value);
    return {measurement::reading_text(quantity, reading), value, out ? Tone::bad : Tone::plain};
}

/// The same, a level with its unit, since two visits may differ in that.
TableCell compared_cell(Quantity quantity, const std::optional<VisitMeasurement>& one) {
    if (!one) return {};
    TableCell cell = reading_cell(quantity, one->measurement);
    const bool measured = one->measurement.reading(quantity).measured();
    if (quantity == Quantity::level && measured && one->measurement.unit)
        cell.text += u' ' + measurement::unit_text(one->measurement.unit);
    return cell;
}

Tone tone_of(const Change& loss, double threshold) {
    if (loss.least && *loss.least >= threshold) return Tone::bad;
    return loss.most && *loss.most <= -threshold ? Tone::good : Tone::plain;
}

TableCell change_cell(Quantity quantity, const ProgramComparison& program,
                      const Thresholds& thresholds) {
    const std::optional<Change>& change = program.change(quantity);
    TableCell cell{.text = change_text(change)};
    if (!change) return cell;
    cell.number = change->least ? *change->least : *change->most;
    cell.tone = tone_of(loss_of(quantity, *change), threshold_of(quantity, thresholds));
    return cell;
}

TableCell margin_cell(const std::optional<measurement::Margin>& margin) {
    TableCell cell{.text = measurement::margin_text(margin)};
    if (!margin) return cell;
    cell.number = margin->decibels;
    // Of one above the range that much is certain.
    const bool known = margin->mark != RangeMark::above;
    if (known && margin->decibels < kThinMargin) cell.tone = Tone::doubtful;
    if (known && margin->decibels <= 0) cell.tone = Tone::bad;
    return cell;
}

TableCell meaning_cell(const ProgramComparison& program, const Texts& texts) {
    static constexpr std::array kTones{Tone::bad,      Tone::bad,   Tone::doubtful, Tone::doubtful,
                                       Tone::doubtful, Tone::plain, Tone::good,     Tone::good};
    const auto place = static_cast<std::size_t>(program.meaning);
    // Within a meaning by what is behind it, which is far below the number of thresholds here.
    constexpr double kMostBadness = 1e6;
    return {meaning_text(program.meaning, texts),
            static_cast<double>(place) - program.badness / kMostBadness, kTones[place]};
}

Margins margins_in(const VisitMeasurement& one, const CodeRateOf& code_rate) {
    return margins_of(one.measurement, code_rate ? code_rate(one.measurement) : std::nullopt);
}

TableCell verdict_cell(const Measurement& measured) {
    static constexpr std::array kVerdictTones{Tone::plain, Tone::good, Tone::bad};
    const auto place = static_cast<std::size_t>(measured.verdict);
    return {measurement::verdict_text(measured.verdict), static_cast<double>(place),
            kVerdictTones[place]};
}

/// Of what `measured_of` finds in a row, where it finds any.
template <typename Row, typename MeasuredOf>
void add_margins(std::vector<TableColumn<Row>>& columns, const CodeRateOf& code_rate,
                 const MeasuredOf& measured_of) {
    const auto margin = [=](std::optional<measurement::Margin> Margins::*which) {
        return [=](const Row& row, const Texts&) -> TableCell {
            const VisitMeasurement* one = measured_of(row);
            return one ? margin_cell(margins_in(*one, code_rate).*which) : TableCell{};
        };
    };
    columns.push_back({called(kTableAlarm), margin(&Margins::alarm)});
    columns.push_back({called(kTableFree), margin(&Margins::quasi_error_free)});
}

void add_quantity(std::vector<TableColumn<ProgramComparison>>& columns, Quantity quantity,
                  const Thresholds& thresholds) {
    columns.push_back({called(kTableBefore, quantity),
                       [quantity](const ProgramComparison& program, const Texts&) {
                           return compared_cell(quantity, program.earlier);
                       },
                       true, true});
    columns.push_back({called(kTableNow, quantity),
                       [quantity](const ProgramComparison& program, const Texts&) {
                           return compared_cell(quantity, program.later);
                       },
                       true, true});
    columns.push_back({called(kTableChange, quantity),
                       [quantity, thresholds](const ProgramComparison& program, const Texts&) {
                           return change_cell(quantity, program, thresholds);
                       },
                       true, quantity == Quantity::pvber});
}

}  // namespace

QByteArray ShownTable::tsv() const {
    return tab_table(heading, rows);
}

ShownTable shown_table(const SiteTable& table, const Texts& texts) {
    ShownTable shown{table.heading(texts), {}};
    for (int row = 0; row < table.rows(); ++row) {
        QStringList cells;
        for (int column = 0; column < shown.heading.size(); ++column)
            cells += table.cell(row, column, texts).text;
        shown.rows += cells;
    }
    return shown;
}

std::unique_ptr<SiteTable> table_of_comparison(std::vector<ProgramComparison> compared,
                                               const CodeRateOf& code_rate,
                                               const Thresholds& thresholds) {
    using Row = ProgramComparison;
    std::vector<TableColumn<Row>> columns{
        {called(kTableProgram),
         [](const Row& program, const Texts&) -> TableCell { return {program.key.name()}; }, false},
        {called(kTableMeaning), meaning_cell, false}};
    for (const Quantity quantity : kComparedQuantities) add_quantity(columns, quantity, thresholds);
    add_margins(columns, code_rate, [](const Row& program) -> const VisitMeasurement* {
        return program.later ? &*program.later : nullptr;
    });
    return std::make_unique<ColumnTable<Row>>(std::move(compared), std::move(columns));
}

std::unique_ptr<SiteTable> table_of_worse(std::vector<GotWorse> worse) {
    using Row = GotWorse;
    const auto change = [](Quantity quantity) {
        return [quantity](const Row& one, const Texts&) {
            return change_cell(quantity, one.program, {});
        };
    };
    std::vector<TableColumn<Row>> columns{
        {called(kTableSite),
         [](const Row& one, const Texts&) -> TableCell { return {one.site.name}; }, false},
        {called(kTableProgram),
         [](const Row& one, const Texts&) -> TableCell { return {one.program.key.name()}; }, false},
        {called(kTableMeaning),
         [](const Row& one, const Texts& texts) { return meaning_cell(one.program, texts); },
         false},
        {called(kTableChange, Quantity::level), change(Quantity::level)},
        {called(kTableChange, Quantity::mer), change(Quantity::mer)},
        {called(kTableSince),
         [](const Row& one, const Texts&) { return time_cell(one.program.earlier); }, false},
        {called(kTableUntil),
         [](const Row& one, const Texts&) { return time_cell(one.program.later); }, false}};
    return std::make_unique<ColumnTable<Row>>(std::move(worse), std::move(columns));
}

std::unique_ptr<SiteTable> table_of_rows(std::vector<VisitMeasurement> rows,
                                         const CodeRateOf& code_rate) {
    using Row = VisitMeasurement;
    constexpr std::array kShownOfRow{Quantity::level, Quantity::cn,  Quantity::mer,  Quantity::ber,
                                     Quantity::pvber, Quantity::cfo, Quantity::noise};
    std::vector<TableColumn<Row>> columns{
        {called(kTableTime), [](const Row& row, const Texts&) { return time_cell(row); }, false},
        {called(kTableProgram),
         [](const Row& row, const Texts&) -> TableCell { return {row.measurement.program.text()}; },
         false},
        {called(kTableFrequency),
         [](const Row& row, const Texts&) { return frequency_cell(row.measurement.frequency); }},
        {called(kTableOscillator),
         [](const Row& row, const Texts&) -> TableCell {
             const std::optional<float>& mhz = row.measurement.oscillator;
             return {measurement::series_key(row.measurement).oscillator_text(),
                     mhz ? static_cast<double>(*mhz) : 0};
         }},
        {called(kTableVerdict),
         [](const Row& row, const Texts&) { return verdict_cell(row.measurement); }, false},
        {called(kTableUnit),
         [](const Row& row, const Texts&) -> TableCell {
             return {measurement::unit_text(row.measurement.unit)};
         },
         false}};
    for (const Quantity quantity : kShownOfRow)
        columns.push_back(
            {[quantity](const Texts& texts) { return quantity_text(quantity, texts); },
             [quantity](const Row& row, const Texts&) {
                 return reading_cell(quantity, row.measurement);
             }});
    add_margins(columns, code_rate, [](const Row& row) { return &row; });
    columns.push_back({called(kTableLimits),
                       [](const Row& row, const Texts& texts) -> TableCell {
                           return {limits_text(row.measurement.limits, texts)};
                       },
                       false});
    return std::make_unique<ColumnTable<Row>>(std::move(rows), std::move(columns));
}

ShownTable comparison_table(const std::vector<ProgramComparison>& compared,
                            const CodeRateOf& code_rate, const Texts& texts) {
    return shown_table(*table_of_comparison(compared, code_rate), texts);
}

ShownTable worse_table(const std::vector<GotWorse>& worse, const Texts& texts) {
    return shown_table(*table_of_worse(worse), texts);
}

ShownTable rows_table(const std::vector<VisitMeasurement>& rows, const CodeRateOf& code_rate,
                      const Texts& texts) {
    return shown_table(*table_of_rows(rows, code_rate), texts);
}

}  // namespace m47::sites
