// SPDX-License-Identifier: GPL-3.0-or-later
#include "import_words.h"

#include <algorithm>
#include <array>

namespace m47::plans {
namespace {

constexpr std::array kColumns{Bilingual{"File line", "Riga del file"},
                              Bilingual{"Program", "Programma"},
                              Bilingual{"Name", "Nome"},
                              Bilingual{"Freq MHz", "Freq MHz"},
                              Bilingual{"V/H", "V/H"},
                              Bilingual{"22kHz", "22kHz"},
                              Bilingual{"L.O. MHz", "O.L. MHz"},
                              Bilingual{"Symbol rate", "SymbolRate"},
                              Bilingual{"Result", "Risultato"}};

constexpr Bilingual kAddedOf{"Programs that will be added: %1 of %2.",
                             "Programmi che verranno aggiunti: %1 su %2."};
constexpr Bilingual kReplacedOf{"Programs of the plan that will be replaced: %1.",
                                "Programmi del piano che verranno sostituiti: %1."};
constexpr Bilingual kBlankGoes{"They replace the empty program of the new plan.",
                               "Sostituiscono il programma vuoto del nuovo piano."};
constexpr Bilingual kIgnoredColumns{"Columns not used: %1", "Colonne non usate: %1"};
constexpr Bilingual kNotSatellite{"Terrestrial and cable channels left out: %1.",
                                  "Canali terrestri e via cavo esclusi: %1."};
constexpr Bilingual kInLogger{"In the logger table: %1 of %2.",
                              "Nella tabella datalogger: %1 su %2."};
constexpr Bilingual kWillBeAdded{"Added", "Aggiunto"};
constexpr Bilingual kWillBeCorrected{"Added, corrected: %1", "Aggiunto, corretto: %1"};
constexpr Bilingual kWillBeReplaced{"Replaces the program of the plan: %1",
                                    "Sostituisce il programma del piano: %1"};
constexpr Bilingual kStreams{"%1 streams of one transponder", "%1 flussi di un transponder"};
constexpr Bilingual kBeyondQpsk{
    "DVB-S2 or 8PSK: the meter measures QPSK, of this the level alone",
    "DVB-S2 o 8PSK: lo strumento misura QPSK, di questo il solo livello"};

QString joined(const QStringList& parts) {
    return parts.join(QStringLiteral("; "));
}

QString outcome(const ImportCandidate& candidate, const ImportRow& row, const Texts& texts) {
    if (!row.added())
        return (import_problem_text(row.problem, texts) + u' ' + joined(candidate.unread))
            .trimmed();
    if (row.replaces) return texts.pick(kWillBeReplaced).arg(joined(row.changes));
    if (row.corrections.isEmpty()) return texts.pick(kWillBeAdded);
    return texts.pick(kWillBeCorrected).arg(joined(row.corrections));
}

QString result_of(const ImportCandidate& candidate, const ImportRow& row, const Texts& texts) {
    QStringList parts{outcome(candidate, row, texts)};
    if (candidate.streams > 1) parts += texts.pick(kStreams).arg(candidate.streams);
    if (candidate.beyond_qpsk && candidate.comes()) parts += texts.pick(kBeyondQpsk);
    // A whole sentence among parts has no end of its own.
    if (parts.size() > 1 && parts.first().endsWith(u'.')) parts.first().chop(1);
    return joined(parts);
}

/// As the file names it, else that which the supply chooses at the LNB.
QString polarisation_of(const ImportCandidate& candidate, const programme::ProgramRecord& record) {
    if (!candidate.polarisation.isEmpty()) return candidate.polarisation;
    if (record.lnb_volt == 1) return QStringLiteral("V");
    return record.lnb_volt == 2 ? QStringLiteral("H") : QString();
}

}  // namespace

std::span<const Bilingual> import_columns() {
    return kColumns;
}

QStringList import_cells(const ImportCandidate& candidate, const ImportRow& row,
                         const Texts& texts) {
    const programme::ProgramRecord& record = row.record;
    return {QString::number(row.line),
            record.pg_num,
            candidate.name,
            record.frequenza,
            polarisation_of(candidate, record),
            record.K22 == 1 ? QStringLiteral("ON") : QStringLiteral("OFF"),
            row.oscillator,
            record.sat_ad ? record.qpsk_symbolrate : QString(),
            result_of(candidate, row, texts)};
}

QString import_summary(const ImportFile& file, const ImportPreview& preview, const Texts& texts) {
    const int replaced = preview.replaced();
    QStringList lines{
        texts.pick(kAddedOf).arg(preview.added() - replaced).arg(preview.rows.size())};
    if (replaced > 0) lines += texts.pick(kReplacedOf).arg(replaced);
    if (preview.replaces_blank) lines += texts.pick(kBlankGoes);
    if (!file.unknown_columns.isEmpty())
        lines += texts.pick(kIgnoredColumns).arg(file.unknown_columns.join(QStringLiteral(", ")));
    if (file.not_satellite > 0) lines += texts.pick(kNotSatellite).arg(file.not_satellite);
    return lines.join(u'\n');
}

QString lines_summary(const ImportPreview& preview, const Texts& texts) {
    const auto active = std::ranges::count_if(
        preview.rows, [](const ImportRow& row) { return row.added() && row.record.logger_state; });
    return texts.pick(kInLogger).arg(active).arg(preview.added());
}

}  // namespace m47::plans
