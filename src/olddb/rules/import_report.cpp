// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_report.h"

#include <QDir>
#include <algorithm>

namespace m47::olddb {
namespace {

Bilingual wording_of_fault(OldFileFault fault) {
    switch (fault) {
        case OldFileFault::missing:
            return {"The old database '%1' does not exist.",
                    "Il vecchio database '%1' non esiste."};
        case OldFileFault::unreadable:
            return {"The old database '%1' cannot be read.",
                    "Il vecchio database '%1' non è leggibile."};
        case OldFileFault::no_jet:
            return {"The file '%1' is no database of the old Jet engine, version 3 or 4.",
                    "Il file '%1' non è un database del vecchio motore Jet, versione 3 o 4."};
        case OldFileFault::foreign:
            return {"The database '%1' holds none of this program's tables.",
                    "Il database '%1' non contiene nessuna tabella di questo programma."};
        case OldFileFault::no_reader:
            return {
                "Old databases cannot be read: %1 is missing or damaged. Install the program "
                "anew.",
                "I vecchi database non si possono leggere: %1 manca o è danneggiato. "
                "Reinstallare il programma."};
        case OldFileFault::damaged:
            break;
    }
    return {"The old database '%1' is damaged. Use a backup copy of it.",
            "Il vecchio database '%1' è danneggiato. Usarne una copia di riserva."};
}

constexpr Bilingual kNothingChanged{"Nothing has been imported.", "Non è stato importato niente."};

constexpr Bilingual kTitle{"Import of '%1' (Jet %2)", "Importazione di '%1' (Jet %2)"};
constexpr Bilingual kPlans{"Plans", "Piani"};
constexpr Bilingual kSatellites{"Satellites", "Satelliti"};
constexpr Bilingual kCorrected{"Corrected", "Corretti"};
constexpr Bilingual kToCheck{"To be checked", "Da controllare"};
constexpr Bilingual kMissing{"Not in the old database", "Assenti nel vecchio database"};
constexpr Bilingual kIgnored{"Not known to this program and left out",
                             "Sconosciuti a questo programma e non importati"};
constexpr Bilingual kNone{"none", "nessuno"};
constexpr Bilingual kPrograms{"%1 (programs: %2)", "%1 (programmi: %2)"};
constexpr Bilingual kStopped{"The database could not be written any further: %1",
                             "Non è stato possibile scrivere oltre nel database: %1"};
constexpr Bilingual kSum{"Came: %1. Replaced: %2. Renamed: %3. Kept: %4. Corrections: %5.",
                         "Importati: %1. Sostituiti: %2. Rinominati: %3. Mantenuti: %4. "
                         "Correzioni: %5."};

Bilingual wording_of_arrival(Arrival arrival) {
    switch (arrival) {
        case Arrival::came:
            return {"came", "importato"};
        case Arrival::kept:
            return {"clashed: the present one is kept", "già presente: mantenuto quello attuale"};
        case Arrival::replaced:
            return {"clashed: the present one is replaced",
                    "già presente: sostituito quello attuale"};
        case Arrival::renamed:
            return {"clashed: came as '%1'", "già presente: importato come '%1'"};
        case Arrival::open:
            break;
    }
    return {"not imported", "non importato"};
}

QString filled(const QString& text, const QStringList& parts) {
    // Together, so that a "%1" in a name stays what it is.
    QString result;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const int number =
            text[at] == u'%' && at + 1 < text.size() ? text[at + 1].digitValue() : -1;
        if (number < 1 || number > parts.size()) {
            result += text[at];
            continue;
        }
        result += parts[number - 1];
        ++at;
    }
    return result;
}

class Report {
  public:
    explicit Report(const Texts& texts) : texts_(texts) {}

    QString filled_in(const Bilingual& wording, const QStringList& parts) const {
        return filled(texts_.pick(wording), parts);
    }
    void section(const Bilingual& heading, const QStringList& lines) {
        text += u'\n' + texts_.pick(heading) + QStringLiteral(":\n");
        for (const QString& line : lines) text += QStringLiteral("  ") + line + u'\n';
        if (lines.isEmpty()) text += QStringLiteral("  ") + texts_.pick(kNone) + u'\n';
    }
    void section_of_notes(const Bilingual& heading, const QList<ImportNote>& notes) {
        QStringList lines;
        for (const ImportNote& note : notes) lines += filled_in(note.wording, note.parts);
        section(heading, lines);
    }
    QString arrival_of(const ImportItem& item, const QString& title) const {
        return title + QStringLiteral(": ") +
               filled_in(wording_of_arrival(item.arrival), {item.new_name});
    }

    QString text;

  private:
    const Texts& texts_;
};

qsizetype count_of(const ImportPlan& plan, Arrival arrival) {
    const auto arrived = [&](const ImportItem& item) { return item.arrival == arrival; };
    return std::ranges::count_if(plan.plans, arrived) +
           std::ranges::count_if(plan.satellites, arrived);
}

QString sum_of(const ImportPlan& plan, const Report& report) {
    QStringList counts;
    for (const Arrival arrival :
         {Arrival::came, Arrival::replaced, Arrival::renamed, Arrival::kept})
        counts += QString::number(count_of(plan, arrival));
    return report.filled_in(kSum, counts << QString::number(plan.corrected.size()));
}

constexpr Bilingual kNotHeld{
    "This kernel has neither Landlock nor seccomp: what reads old databases was held by limits of "
    "time, memory and open files alone.",
    "Questo kernel non ha né Landlock né seccomp: la lettura dei vecchi database è stata limitata "
    "solo in tempo, memoria e file aperti."};

}  // namespace

QString old_file_error_text(const OldFileError& error, const Texts& texts) {
    QString text =
        filled(texts.pick(wording_of_fault(error.fault)), {QDir::toNativeSeparators(error.path)});
    text += u' ' + texts.pick(kNothingChanged);
    return error.detail.isEmpty() ? text : text + QStringLiteral(" (%1)").arg(error.detail);
}

QString reader_remark(const OldDatabase& old, const Texts& texts) {
    return old.reader_was_held ? QString() : texts.pick(kNotHeld);
}

QString stopped_text(const QString& stopped, const Texts& texts) {
    return texts.pick(kStopped).arg(stopped);
}

QString import_report(const ImportPlan& plan, const QString& path, const QString& stopped,
                      const Texts& texts) {
    Report report(texts);
    report.text =
        report.filled_in(kTitle, {QDir::toNativeSeparators(path), QString::number(plan.version)}) +
        u'\n';
    QStringList lines;
    for (const ImportedPlan& one : plan.plans)
        lines += report.arrival_of(
            one, report.filled_in(kPrograms, {one.name, QString::number(one.programs.size())}));
    report.section(kPlans, lines);
    lines.clear();
    for (const ImportedSatellite& one : plan.satellites) lines += report.arrival_of(one, one.name);
    report.section(kSatellites, lines);
    report.section_of_notes(kCorrected, plan.corrected);
    if (!plan.to_check.isEmpty()) report.section_of_notes(kToCheck, plan.to_check);
    if (!plan.missing.isEmpty()) report.section(kMissing, plan.missing);
    if (!plan.ignored.isEmpty()) report.section(kIgnored, plan.ignored);
    report.text += u'\n' + sum_of(plan, report) + u'\n';
    if (!stopped.isEmpty()) report.text += stopped_text(stopped, texts) + u'\n';
    return report.text;
}

}  // namespace m47::olddb
