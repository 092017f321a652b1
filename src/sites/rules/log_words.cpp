// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>

#include "log_import.h"
#include "measurement.h"
#include "row_time.h"
#include "series_key.h"

namespace m47::sites {
namespace {

using measurement::Quantity;

constexpr Bilingual kLogBecomes{"%1 visits with %2 measurements; %3 lines cannot be read.",
                                "%1 visite con %2 misure; %3 righe non si possono leggere."};
constexpr Bilingual kLogZone{
    "A log has the time of a wall clock alone, without a zone: it is taken as that of %1.",
    "Un log ha solo l'ora di un orologio, senza fuso: si assume quella di %1."};
constexpr Bilingual kLineHeading{"Line", "Riga"};
constexpr Bilingual kVisitHeading{"Visit", "Visita"};
constexpr Bilingual kTimeHeading{"Date and time", "Data e ora"};
constexpr Bilingual kWhyHeading{"Why it cannot be read", "Perché non si legge"};
constexpr Bilingual kTextHeading{"Text", "Testo"};

constexpr std::array kLogReadings{Quantity::level, Quantity::ber, Quantity::pvber, Quantity::cfo,
                                  Quantity::mer};

}  // namespace

QString log_text(const LogPreview& log, const Texts& texts) {
    if (log.refused) return log.refused->in(texts);
    std::size_t rows = 0;
    for (const LogVisit& visit : log.visits) rows += visit.whole.rows.size();
    return texts.pick(kLogBecomes).arg(log.visits.size()).arg(rows).arg(log.unread.size()) + u' ' +
           texts.pick(kLogZone).arg(log.zone);
}

QStringList log_heading(const Texts& texts) {
    // The columns of the measurement page keep their names in every language.
    return QStringList{texts.pick(kLineHeading), texts.pick(kVisitHeading),
                       texts.pick(kTimeHeading)} +
           QStringList{"FR", "OSC", "LEV", "BER", "PVBER", "CFO", "MER", "STATUS"};
}

QStringList log_cells(const LogPreview& log, std::size_t visit, std::size_t row) {
    const LogVisit& of = log.visits[visit];
    const VisitMeasurement& one = of.whole.rows[row];
    const measurement::Measurement& read = one.measurement;
    QStringList cells{QString::number(of.lines[row]), QString::number(visit + 1),
                      QString::fromStdString(measurement::time_text(one.instant.wall())),
                      read.frequency ? measurement::frequency_text(*read.frequency) : QString(),
                      measurement::series_key(read).oscillator_text()};
    for (const Quantity quantity : kLogReadings)
        cells += measurement::reading_text(quantity, read.reading(quantity));
    return cells << measurement::verdict_text(read.verdict);
}

QStringList unread_heading(const Texts& texts) {
    return {texts.pick(kLineHeading), texts.pick(kWhyHeading), texts.pick(kTextHeading)};
}

QStringList unread_cells(const UnreadLine& line, const Texts& texts) {
    return {QString::number(line.number), line.why.in(texts), line.text};
}

}  // namespace m47::sites
