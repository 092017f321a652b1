// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_report_texts.h"

#include <QDateTime>
#include <algorithm>

#include "change.h"
#include "quantity_words.h"
#include "row_time.h"

namespace m47::sites {
namespace {

using measurement::Quantity;
using measurement::Verdict;
using report::CellTone;
using report::ReportTable;

constexpr Bilingual kBegun{"Begun", "Inizio"};
constexpr Bilingual kEnded{"Ended", "Fine"};
constexpr Bilingual kNotEnded{"not ended", "non conclusa"};
constexpr Bilingual kReportTechnician{"Technician", "Tecnico"};
constexpr Bilingual kReportMeter{"Meter", "Strumento"};
constexpr Bilingual kReportLogo{"Text in the meter", "Testo nello strumento"};
constexpr Bilingual kReportPlan{"Plan", "Piano"};
constexpr Bilingual kReportRemarks{"Remarks", "Note"};
constexpr Bilingual kComparedTo{"Compared with", "Confrontata con"};
constexpr Bilingual kNothingBefore{"no earlier visit", "nessuna visita precedente"};

constexpr Bilingual kNoneMeasured{"Nothing was measured.", "Non è stato misurato nulla."};
constexpr Bilingual kAllPass{"Within their limits: all %1 programs.",
                             "Entro i limiti: tutti i %1 programmi."};
constexpr Bilingual kOnePasses{"Within its limits: the one program.",
                               "Entro i limiti: l'unico programma."};
constexpr Bilingual kSomeFail{"Outside their limits: %1 of %2 programs: %3.",
                              "Fuori dai limiti: %1 programmi su %2: %3."};
constexpr Bilingual kUnjudged{"Measured without limits: %1 of %2 programs.",
                              "Misurati senza limiti: %1 programmi su %2."};
constexpr Bilingual kNowLost{"No reading any more since %1: %2.", "Senza più lettura dal %1: %2."};
constexpr Bilingual kNowWorse{"Worse than on %1: %2.", "Peggiorati rispetto al %1: %2."};
constexpr Bilingual kNowUnasked{"Not measured this time: %1.", "Non misurati questa volta: %1."};
constexpr Bilingual kNowElsewhere{"On another transponder than on %1, and not compared: %2.",
                                  "Su un altro transponder rispetto al %1, e non confrontati: %2."};
constexpr Bilingual kNotCompared{"Read on %1 and not comparable now: %2.",
                                 "Letti il %1 e ora non confrontabili: %2."};
constexpr Bilingual kNoneWorse{"Nothing got worse since %1.", "Nulla è peggiorato dal %1."};
constexpr Bilingual kNoneKnownWorse{"Nothing of what was compared got worse since %1.",
                                    "Nulla di ciò che è stato confrontato è peggiorato dal %1."};
constexpr Bilingual kAndMore{"%1 and %2 more", "%1 e altri %2"};

constexpr Bilingual kBeforeCaption{"Before and after", "Prima e dopo"};
constexpr Bilingual kBeforeRemark{
    "%1 against %2, the worst first. Differences in dB, of the BER in decades.",
    "%1 rispetto al %2, prima il peggio. Differenze in dB, del BER in decadi."};
constexpr Bilingual kColumnProgram{"Program", "Programma"};
constexpr Bilingual kColumnMeaning{"Result", "Esito"};
constexpr Bilingual kColumnBefore{"before", "prima"};
constexpr Bilingual kColumnNow{"now", "ora"};
constexpr Bilingual kColumnChange{"±", "±"};

constexpr Bilingual kMeasuredCaption{"Measurements and margins", "Misure e margini"};
constexpr Bilingual kMeasuredRemark{
    "Margins of the MER in dB: to the alarm minimum, and to the threshold below which errors "
    "remain "
    "(QEF, quasi error free).",
    "Margini del MER in dB: dal minimo di allarme e dalla soglia sotto la quale restano errori "
    "(QEF, quasi error free)."};
constexpr Bilingual kColumnUnit{"Unit", "Unità"};
constexpr Bilingual kColumnAlarm{"To alarm", "Allarme"};
constexpr Bilingual kColumnFree{"To QEF", "QEF"};

/// More programs by name are too many for a sentence.
constexpr qsizetype kNamed = 12;
constexpr std::array kBeforeQuantities{Quantity::level, Quantity::cn, Quantity::mer, Quantity::ber};

QString wall_text(const Instant& instant) {
    constexpr int kMilliseconds = 1000;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(instant.wall() * kMilliseconds),
                                          Qt::UTC)
        .toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString listed(const QStringList& names, const Texts& texts) {
    const QString separator = QStringLiteral(", ");
    if (names.size() <= kNamed) return names.join(separator);
    return Said{kAndMore,
                {names.mid(0, kNamed).join(separator), QString::number(names.size() - kNamed)}}
        .in(texts);
}

/// "ROSSI 001", where there is no plan frequency and oscillator.
QString short_name(const measurement::SeriesKey& key) {
    return key.program.known() ? key.program.text() : key.name();
}

/// "ROSSI 001 (MER 4.8 dB less, level 5.0 dB less)".
QString worse_words(const ProgramComparison& program, const Texts& texts) {
    QStringList fallen;
    for (const Quantity quantity : {Quantity::mer, Quantity::level, Quantity::cn, Quantity::ber}) {
        const auto& change = program.change(quantity);
        if (!change) continue;
        const Change loss = loss_of(quantity, *change);
        if (!loss.least || *loss.least < threshold_of(quantity, {})) continue;
        fallen += quantity_text(quantity, texts) + u' ' + change_words(quantity, change, texts);
    }
    const QString name = short_name(program.key);
    return fallen.isEmpty() ? name : QStringLiteral("%1 (%2)").arg(name, fallen.join(", "));
}

/// "ROSSI 001 (MER)": what a program that did not get worse is not known to have kept.
QString unknown_words(const ProgramComparison& program, const Texts& texts) {
    QStringList unknown;
    for (const Quantity quantity : {Quantity::mer, Quantity::level, Quantity::cn, Quantity::ber})
        if (program.is_unknown(quantity)) unknown += quantity_text(quantity, texts);
    return QStringLiteral("%1 (%2)").arg(short_name(program.key), unknown.join(", "));
}

bool is_no_worse(const ProgramComparison& program) {
    return program.meaning == Meaning::same || program.meaning == Meaning::better;
}

bool has_unknown(const ProgramComparison& program) {
    const bool judged = is_no_worse(program) || program.meaning == Meaning::incomparable;
    return judged && std::ranges::find(program.unknown, true) != program.unknown.end();
}

QStringList names_of_unknown(const ReportedVisit& visit, const Texts& texts) {
    QStringList names;
    for (const ProgramComparison& each : visit.compared)
        if (has_unknown(each)) names += unknown_words(each, texts);
    return names;
}

QStringList names_of(const ReportedVisit& visit, Meaning meaning, const Texts& texts) {
    QStringList names;
    for (const ProgramComparison& each : visit.compared)
        if (each.meaning == meaning)
            names += meaning == Meaning::worse ? worse_words(each, texts) : short_name(each.key);
    return names;
}

void add_limits(QList<VerdictLine>& lines, const ReportedVisit& visit, const Texts& texts) {
    const QString all = QString::number(visit.rows.size());
    QStringList failed;
    for (const VisitMeasurement& row : visit.rows)
        if (row.measurement.verdict == Verdict::fail) failed += short_name(program_key(row));
    if (!failed.isEmpty())
        lines += {
            Said{kSomeFail, {QString::number(failed.size()), all, listed(failed, texts)}}.in(texts),
            CellTone::bad};
    else if (visit.count(Verdict::pass) == visit.rows.size())
        lines += {visit.rows.size() == 1 ? texts.pick(kOnePasses) : Said{kAllPass, {all}}.in(texts),
                  CellTone::good};
    if (const std::size_t none = visit.count(Verdict::none); none > 0)
        lines += {Said{kUnjudged, {QString::number(none), all}}.in(texts), CellTone::plain};
}

void add_changes(QList<VerdictLine>& lines, const ReportedVisit& visit, const Texts& texts) {
    const QString since = wall_text(visit.before->begun);
    const QStringList lost = names_of(visit, Meaning::lost, texts);
    const QStringList worse = names_of(visit, Meaning::worse, texts);
    const QStringList unasked = names_of(visit, Meaning::unasked, texts);
    const QStringList elsewhere = names_of(visit, Meaning::elsewhere, texts);
    const QStringList unknown = names_of_unknown(visit, texts);
    if (!lost.isEmpty())
        lines += {Said{kNowLost, {since, listed(lost, texts)}}.in(texts), CellTone::bad};
    if (!worse.isEmpty())
        lines += {Said{kNowWorse, {since, listed(worse, texts)}}.in(texts), CellTone::bad};
    if (!unasked.isEmpty())
        lines += {Said{kNowUnasked, {listed(unasked, texts)}}.in(texts), CellTone::doubtful};
    if (!elsewhere.isEmpty())
        lines +=
            {Said{kNowElsewhere, {since, listed(elsewhere, texts)}}.in(texts), CellTone::doubtful};
    if (!unknown.isEmpty())
        lines +=
            {Said{kNotCompared, {since, listed(unknown, texts)}}.in(texts), CellTone::doubtful};
    if (!lost.isEmpty() || !worse.isEmpty() || !std::ranges::any_of(visit.compared, is_no_worse))
        return;
    const bool all_known = elsewhere.isEmpty() && unknown.isEmpty();
    lines += {Said{all_known ? kNoneWorse : kNoneKnownWorse, {since}}.in(texts), CellTone::good};
}

CellTone paper_tone(Tone tone) {
    switch (tone) {
        case Tone::good:
            return CellTone::good;
        case Tone::doubtful:
            return CellTone::doubtful;
        case Tone::bad:
            return CellTone::bad;
        case Tone::plain:
            break;
    }
    return CellTone::plain;
}

/// Takes the columns `columns` of `table`.
void fill(ReportTable& made, const SiteTable& table, const QList<int>& columns,
          const Texts& texts) {
    for (const int column : columns) made.numbers += table.is_number(column);
    for (int row = 0; row < table.rows(); ++row) {
        QStringList cells;
        QList<CellTone> tones;
        for (const int column : columns) {
            const TableCell cell = table.cell(row, column, texts);
            cells += cell.text;
            tones += paper_tone(cell.tone);
        }
        made.rows += cells;
        made.tones += tones;
    }
}

/// Levels that are all in one unit have it in the heading, not in each cell.
void name_unit_once(ReportTable& table, const std::vector<ProgramComparison>& compared) {
    std::optional<LevelUnit> unit;
    for (const ProgramComparison& each : compared)
        for (const auto* one : {&each.earlier, &each.later}) {
            if (!*one || !(*one)->measurement.reading(Quantity::level).measured()) continue;
            const std::optional<LevelUnit>& its = (*one)->measurement.unit;
            if (!its || (unit && unit != its)) return;
            unit = its;
        }
    if (!unit) return;
    const QString name = measurement::unit_text(unit);
    constexpr int kLevelGroup = 1;
    constexpr std::array kLevelColumns{2, 3};
    table.groups[kLevelGroup].first += QStringLiteral(" (%1)").arg(name);
    for (QStringList& row : table.rows)
        for (const int column : kLevelColumns)
            if (row[column].endsWith(u' ' + name)) row[column].chop(name.size() + 1);
}

/// Where in a comparison stands what was before of `quantity`; now and the change are behind it.
int column_before(Quantity quantity) {
    constexpr int kProgramAndMeaning = 2;
    constexpr int kOfEach = 3;
    const auto found = std::ranges::find(kComparedQuantities, quantity);
    return kProgramAndMeaning + kOfEach * static_cast<int>(found - kComparedQuantities.begin());
}

}  // namespace

QString report_time(const Visit& visit) {
    return wall_text(visit.begun);
}

QList<std::pair<QString, QString>> facts_of(const ReportedVisit& visit, const Texts& texts) {
    const Visit& of = visit.visit;
    QList<std::pair<QString, QString>> facts{
        {texts.pick(kBegun), wall_text(of.begun)},
        {texts.pick(kEnded), of.ended ? wall_text(*of.ended) : texts.pick(kNotEnded)},
        {texts.pick(kReportTechnician), of.technician},
        {texts.pick(kReportMeter), of.instrument},
        {texts.pick(kReportLogo), of.logo.simplified()},
        {texts.pick(kReportPlan), of.plan},
        {texts.pick(kComparedTo),
         visit.before ? wall_text(visit.before->begun) : texts.pick(kNothingBefore)},
        {texts.pick(kReportRemarks), of.remarks}};
    facts.removeIf([](const auto& fact) { return fact.second.isEmpty(); });
    return facts;
}

QList<VerdictLine> verdict_of(const ReportedVisit& visit, const Texts& texts) {
    QList<VerdictLine> lines;
    if (visit.rows.empty())
        lines += {texts.pick(kNoneMeasured), CellTone::doubtful};
    else
        add_limits(lines, visit, texts);
    if (visit.before) add_changes(lines, visit, texts);
    return lines;
}

ReportTable before_table(const ReportedVisit& visit, const Texts& texts) {
    ReportTable table{.caption = texts.pick(kBeforeCaption)};
    if (!visit.before) return table;
    table.remark =
        Said{kBeforeRemark, {wall_text(visit.visit.begun), wall_text(visit.before->begun)}}.in(
            texts);
    table.header = {texts.pick(kColumnProgram), texts.pick(kColumnMeaning)};
    table.groups = {{QString(), 2}};
    QList<int> columns{0, 1};
    for (const Quantity quantity : kBeforeQuantities) {
        const int before = column_before(quantity);
        columns += {before, before + 1, before + 2};
        table.header +=
            {texts.pick(kColumnBefore), texts.pick(kColumnNow), texts.pick(kColumnChange)};
        table.groups += {quantity_text(quantity, texts), 3};
    }
    fill(table, *table_of_comparison(visit.compared, {}), columns, texts);
    for (std::size_t k = 0; k < visit.compared.size(); ++k)
        table.rows[static_cast<qsizetype>(k)][0] = short_name(visit.compared[k].key);
    name_unit_once(table, visit.compared);
    return table;
}

ReportTable measured_table(const ReportedVisit& visit, const CodeRateOf& code_rate,
                           const Texts& texts) {
    // Of a table of rows: what stands here beside the program.
    const QList<int> columns{2, 3, 6, 5, 7, 8, 9, 10, 13, 14, 4};
    ReportTable table{.caption = texts.pick(kMeasuredCaption),
                      .remark = texts.pick(kMeasuredRemark)};
    fill(table, *table_of_rows(visit.rows, code_rate), columns, texts);
    table.header = {texts.pick(kColumnProgram), QStringLiteral("MHz"), QStringLiteral("OSC"),
                    quantity_text(Quantity::level, texts), texts.pick(kColumnUnit)};
    for (const Quantity quantity : {Quantity::cn, Quantity::mer, Quantity::ber, Quantity::pvber})
        table.header += quantity_text(quantity, texts);
    table.header += {texts.pick(kColumnAlarm), texts.pick(kColumnFree), texts.pick(kColumnMeaning)};
    for (std::size_t k = 0; k < visit.rows.size(); ++k) {
        const auto row = static_cast<qsizetype>(k);
        table.rows[row].prepend(visit.rows[k].measurement.program.text());
        table.tones[row].prepend(CellTone::plain);
    }
    table.numbers.prepend(false);
    return table;
}

}  // namespace m47::sites
