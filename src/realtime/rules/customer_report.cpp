// SPDX-License-Identifier: GPL-3.0-or-later
#include "customer_report.h"

#include <algorithm>

#include "page_model.h"
#include "report_summary.h"

namespace m47 {
namespace {

constexpr Bilingual kReportTitle{"Measurement report", "Rapporto di misura"};
constexpr Bilingual kSite{"Site", "Luogo"};
constexpr Bilingual kTechnician{"Technician", "Tecnico"};
constexpr Bilingual kMeter{"Meter", "Strumento"};
constexpr Bilingual kDate{"Date", "Data"};
constexpr Bilingual kPlan{"Plan", "Piano"};
constexpr Bilingual kUnit{"Level unit", "Unità del livello"};
constexpr Bilingual kResult{"Result", "Esito"};
constexpr Bilingual kNotes{"Notes", "Note"};
constexpr Bilingual kNoPlan{"none (single elements)", "nessuno (elementi singoli)"};
constexpr Bilingual kUnknownMeter{"not connected", "non collegato"};
constexpr Bilingual kNoMeasurements{"No measurement", "Nessuna misura"};
constexpr Bilingual kCounted{"%1 measurements: %2 PASS, %3 FAIL, %4 without limits",
                             "%1 misure: %2 PASS, %3 FAIL, %4 senza limiti"};

constexpr Bilingual kSummaryCaption{"Summary by program", "Riepilogo per programma"};
constexpr Bilingual kSummaryOfAll{"Over all %1 measurements.", "Su tutte le %1 misure."};
constexpr Bilingual kSummaryOfSome{
    "Over all %1 measurements; the first %2 of %3 programs are listed.",
    "Su tutte le %1 misure; elencati i primi %2 programmi su %3."};
constexpr Bilingual kSummaryHeader[] = {{"FR", "FR"},     {"OSC", "OSC"},   {"Rows", "Righe"},
                                        {"PASS", "PASS"}, {"FAIL", "FAIL"}, {"LEV", "LEV"},
                                        {"BER", "BER"},   {"MER", "MER"}};

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
constexpr Bilingual kEveryRow{"All %1 measurements.", "Tutte le %1 misure."};
constexpr Bilingual kNewestRows{
    "The newest %1 of %2 measurements. The %3 before them are not printed here; the summary counts "
    "them.",
    "Le ultime %1 misure di %2. Le %3 precedenti non sono stampate qui; il riepilogo le conta."};
constexpr Bilingual kPageNumber{"Page %1 of %2", "Pagina %1 di %2"};

const QString kNothing = QStringLiteral("—");

QString or_dash(const QString& text) {
    return text.trimmed().isEmpty() ? kNothing : text.trimmed();
}

QString text_of_field(const std::string& field) {
    return or_dash(QString::fromLatin1(field.data(), static_cast<qsizetype>(field.size())));
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
        const ProgramSummary& program = summary.programs[k];
        table.rows.append(
            {text_of_field(program.frequency), text_of_field(program.oscillator),
             QString::number(program.counts.rows), QString::number(program.counts.passed),
             QString::number(program.counts.failed), or_dash(program.range(Quantity::level)),
             or_dash(program.range(Quantity::ber)), or_dash(program.range(Quantity::mer))});
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

ReportTable measurements_table(const PageStore& page, const Texts& texts) {
    const int printed = std::min(page.rows(), kReportRows);
    const int left_out = page.rows() - printed;
    ReportTable table{texts.pick(kMeasurements), {}, {}, {}};
    if (left_out > 0)
        table.remark = texts.pick(kNewestRows).arg(printed).arg(page.rows()).arg(left_out);
    else
        table.remark = texts.pick(kEveryRow).arg(printed);
    const PageModel names;
    for (int column = 0; column < PageStore::kColumns; ++column)
        table.header += names.headerData(column, Qt::Horizontal).toString();
    for (int row = left_out; row < page.rows(); ++row) {
        const std::string_view line = page.line(row);
        table.rows.append(
            QString::fromLatin1(line.data(), static_cast<qsizetype>(line.size())).split(u'\t'));
    }
    return table;
}

QList<std::pair<QString, QString>> facts_of(const ReportContext& context, const RowCounts& counts,
                                            const Texts& texts) {
    const auto known = [&texts](const QString& text, const Bilingual& otherwise) {
        return text.trimmed().isEmpty() ? texts.pick(otherwise) : text.trimmed();
    };
    return {{texts.pick(kSite), or_dash(context.entry.site)},
            {texts.pick(kTechnician), or_dash(context.entry.technician)},
            {texts.pick(kMeter), known(context.meter, kUnknownMeter)},
            {texts.pick(kDate), context.made.toString(QStringLiteral("dd/MM/yyyy HH:mm"))},
            {texts.pick(kPlan), known(context.plan, kNoPlan)},
            {texts.pick(kUnit), context.unit},
            {texts.pick(kResult), result_text(counts, texts)}};
}

}  // namespace

CustomerReport compose_report(const PageStore& page, const ReportContext& context,
                              const Texts& texts) {
    const PageSummary summary = summary_of(page);
    CustomerReport report;
    report.title = texts.pick(kReportTitle);
    report.facts = facts_of(context, summary.counts, texts);
    report.notes_caption = texts.pick(kNotes);
    report.notes = context.entry.notes.trimmed();
    report.summary = summary_table(summary, texts);
    report.limits = limits_table(context.limits, texts);
    report.trend_caption = texts.pick(kTrend);
    report.no_trend = texts.pick(kNoTrend);
    report.measurements = measurements_table(page, texts);
    report.page_number = texts.pick(kPageNumber);
    return report;
}

}  // namespace m47
