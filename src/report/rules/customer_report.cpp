// SPDX-License-Identifier: GPL-3.0-or-later
#include "customer_report.h"

#include <algorithm>

#include "page_model.h"
#include "report_summary.h"

namespace m47::report {
namespace {

constexpr Bilingual kReportTitle{"Measurement report", "Rapporto di misura"};
constexpr Bilingual kSite{"Site", "Luogo"};
constexpr Bilingual kTechnician{"Technician", "Tecnico"};
constexpr Bilingual kMeter{"Meter", "Strumento"};
constexpr Bilingual kDate{"Date", "Data"};
constexpr Bilingual kPlan{"Plan", "Piano"};
constexpr Bilingual kUnit{"Level unit", "Unità del livello"};
constexpr Bilingual kUnitUnknown{"not known", "non nota"};
constexpr Bilingual kUnitsMixed{"%1: each row in its own, none is converted",
                                "%1: ogni riga nella sua, nessuna è convertita"};
constexpr Bilingual kResult{"Result", "Esito"};
constexpr Bilingual kNotes{"Notes", "Note"};
constexpr Bilingual kNoPlan{"none (single elements)", "nessuno (elementi singoli)"};
constexpr Bilingual kUnknownMeter{"not connected", "non collegato"};
constexpr Bilingual kNoMeasurements{"No measurement", "Nessuna misura"};
constexpr Bilingual kCounted{"Measurements: %1, of them %2 PASS, %3 FAIL, %4 without limits",
                             "Misure: %1, di cui %2 PASS, %3 FAIL, %4 senza limiti"};

constexpr Bilingual kSummaryCaption{"Summary by program", "Riepilogo per programma"};
constexpr Bilingual kSummaryOfAll{"Over all measurements: %1.", "Su tutte le misure: %1."};
constexpr Bilingual kSummaryOfSome{
    "Over all measurements: %1. Listed are the first %2 of %3 programs.",
    "Su tutte le misure: %1. Elencati i primi %2 programmi su %3."};
constexpr Bilingual kSummaryHeader[] = {
    {"Program", "Programma"}, {"FR", "FR"},   {"OSC", "OSC"},   {"Rows", "Righe"}, {"PASS", "PASS"},
    {"FAIL", "FAIL"},         {"LEV", "LEV"}, {"UNIT", "UNIT"}, {"BER", "BER"},    {"MER", "MER"}};

constexpr Bilingual kLimitsCaption{"Limits", "Limiti"};
constexpr Bilingual kLimitsRemark{
    "As set when this report was made. A value passes above the minimum and below the maximum; "
    "PASS or FAIL of a row holds by the limits at its measurement.",
    "Come impostati alla stesura del rapporto. Un valore è buono sopra il minimo e sotto il "
    "massimo; PASS o FAIL di una riga vale per i limiti al momento della misura."};
constexpr Bilingual kLimitsHeader[] = {{"Program", "Programma"}, {"FR", "FR"},   {"LEV", "LEV"},
                                       {"C/N", "C/N"},           {"BER", "BER"}, {"MER", "MER"}};

constexpr Bilingual kTrend{"Trend", "Andamento"};
constexpr Bilingual kNoTrend{"No measurement has a place on the trend.",
                             "Nessuna misura trova posto nell'andamento."};

constexpr Bilingual kMeasurements{"Measurement page", "Pagina misure"};
constexpr Bilingual kEveryRow{"All measurements: %1.", "Tutte le misure: %1."};
constexpr Bilingual kNewestRows{
    "The newest %1 of %2 measurements. Before them and not printed here, but counted in the "
    "summary: %3.",
    "Le ultime %1 misure di %2. Precedenti e non stampate qui, ma contate nel riepilogo: %3."};
constexpr Bilingual kPageNumber{"Page %1 of %2", "Pagina %1 di %2"};

const QString kNothing = QStringLiteral("—");
const QString kUnitColumn = QStringLiteral("UNIT");

QString or_dash(const QString& text) {
    return text.trimmed().isEmpty() ? kNothing : text.trimmed();
}

template <std::size_t Columns>
QStringList picked(const Bilingual (&header)[Columns], const Texts& texts) {
    QStringList made;
    for (const Bilingual& column : header) made += texts.pick(column);
    return made;
}

QString result_text(const RowCounts& counts, const Texts& texts) {
    if (counts.rows == 0) return texts.pick(kNoMeasurements);
    const QString counted = texts.pick(kCounted)
                                .arg(counts.rows)
                                .arg(counts.passed)
                                .arg(counts.failed)
                                .arg(counts.unjudged());
    if (counts.failed > 0) return QStringLiteral("FAIL — ") + counted;
    return counts.passed > 0 ? QStringLiteral("PASS — ") + counted : counted;
}

QStringList summary_row(const ProgramSummary& program) {
    const measurement::SeriesKey& key = program.key;
    const QString level = program.range(measurement::Quantity::level);
    return {or_dash(key.program.text()),
            key.frequency ? measurement::frequency_text(*key.frequency) : kNothing,
            or_dash(key.oscillator_text()),
            QString::number(program.counts.rows),
            QString::number(program.counts.passed),
            QString::number(program.counts.failed),
            or_dash(level),
            or_dash(level.isEmpty() ? QString() : measurement::unit_text(key.unit)),
            or_dash(program.range(measurement::Quantity::ber)),
            or_dash(program.range(measurement::Quantity::mer))};
}

ReportTable summary_table(const PageSummary& summary, const Texts& texts) {
    const std::size_t listed = std::min<std::size_t>(summary.programs.size(), kReportPrograms);
    ReportTable table{texts.pick(kSummaryCaption), {}, picked(kSummaryHeader, texts), {}};
    if (listed < summary.programs.size())
        table.remark = texts.pick(kSummaryOfSome)
                           .arg(summary.counts.rows)
                           .arg(listed)
                           .arg(summary.programs.size());
    else
        table.remark = texts.pick(kSummaryOfAll).arg(summary.counts.rows);
    for (std::size_t k = 0; k < listed; ++k) {
        table.rows.append(summary_row(summary.programs[k]));
    }
    return table;
}

ReportTable limits_table(const QList<ReportLimits>& limits, const Texts& texts) {
    ReportTable table{
        texts.pick(kLimitsCaption), texts.pick(kLimitsRemark), picked(kLimitsHeader, texts), {}};
    for (const ReportLimits& of : limits)
        table.rows.append({or_dash(of.program), or_dash(of.frequency), or_dash(of.level),
                           or_dash(of.cn), or_dash(of.ber), or_dash(of.mer)});
    return table;
}

/// The row as the page has it, and beside it the unit of its level.
QStringList printed_row(const measurement::PageStore& page, int row,
                        std::optional<LevelUnit> unit) {
    const std::string_view line = page.line(row);
    QStringList cells =
        QString::fromLatin1(line.data(), static_cast<qsizetype>(line.size())).split(u'\t');
    const measurement::Measurement measurement = page.measurement(row, unit);
    const bool measured = measurement.reading(measurement::Quantity::level).measured();
    return cells << (measured ? measurement::unit_text(measurement.unit) : QString());
}

ReportTable measurements_table(const measurement::PageStore& page, std::optional<LevelUnit> unit,
                               const Texts& texts) {
    const int printed = std::min(page.rows(), kReportRows);
    const int left_out = page.rows() - printed;
    ReportTable table{texts.pick(kMeasurements), {}, {}, {}};
    if (left_out > 0)
        table.remark = texts.pick(kNewestRows).arg(printed).arg(page.rows()).arg(left_out);
    else
        table.remark = texts.pick(kEveryRow).arg(printed);
    const measurement::PageModel names;
    for (int column = 0; column < measurement::PageStore::kColumns; ++column)
        table.header += names.headerData(column, Qt::Horizontal).toString();
    table.header += kUnitColumn;
    for (int row = left_out; row < page.rows(); ++row)
        table.rows.append(printed_row(page, row, unit));
    return table;
}

QString units_text(const QStringList& units, const Texts& texts) {
    QStringList named;
    for (const QString& unit : units) named += unit.isEmpty() ? texts.pick(kUnitUnknown) : unit;
    if (named.isEmpty()) return kNothing;
    const QString all = named.join(QStringLiteral(", "));
    return named.size() == 1 ? all : texts.pick(kUnitsMixed).arg(all);
}

QList<std::pair<QString, QString>> facts_of(const ReportContext& context,
                                            const PageSummary& summary, const Texts& texts) {
    const auto known = [&texts](const QString& text, const Bilingual& otherwise) {
        return text.trimmed().isEmpty() ? texts.pick(otherwise) : text.trimmed();
    };
    const QStringList plans = summary.plans();
    const QString plan = plans.isEmpty() ? context.plan : plans.join(QStringLiteral(", "));
    return {{texts.pick(kSite), or_dash(context.entry.site)},
            {texts.pick(kTechnician), or_dash(context.entry.technician)},
            {texts.pick(kMeter), known(context.meter, kUnknownMeter)},
            {texts.pick(kDate), context.made.toString(QStringLiteral("dd/MM/yyyy HH:mm"))},
            {texts.pick(kPlan), known(plan, kNoPlan)},
            {texts.pick(kUnit), units_text(summary.units(), texts)},
            {texts.pick(kResult), result_text(summary.counts, texts)}};
}

}  // namespace

CustomerReport compose_report(const measurement::PageStore& page, const ReportContext& context,
                              const Texts& texts) {
    const PageSummary summary = summary_of(page, context.entry.unit);
    CustomerReport report;
    report.title = texts.pick(kReportTitle);
    report.facts = facts_of(context, summary, texts);
    report.notes_caption = texts.pick(kNotes);
    report.notes = context.entry.notes.trimmed();
    report.summary = summary_table(summary, texts);
    report.limits = limits_table(context.limits, texts);
    report.trend_caption = texts.pick(kTrend);
    report.no_trend = texts.pick(kNoTrend);
    report.measurements = measurements_table(page, context.entry.unit, texts);
    report.page_number = texts.pick(kPageNumber);
    return report;
}

}  // namespace m47::report
