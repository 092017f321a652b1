// SPDX-License-Identifier: GPL-3.0-or-later
#include <QLocale>

#include "measurement_output.h"
#include "row_time.h"
#include "series_key.h"
#include "site_merge.h"
#include "site_values.h"

namespace m47::sites {
namespace {

constexpr Bilingual kOfSite{"Site %1", "Sito %1"};
constexpr Bilingual kOfVisit{"Visit of %1", "Visita del %1"};
constexpr Bilingual kOfRow{"Measurement of %1, %2", "Misura del %1, %2"};
constexpr Bilingual kFieldName{"Name", "Nome"};
constexpr Bilingual kFieldAddress{"Address", "Indirizzo"};
constexpr Bilingual kFieldCustomer{"Customer", "Cliente"};
constexpr Bilingual kFieldRemarks{"Remarks", "Note"};
constexpr Bilingual kFieldSite{"Site", "Sito"};
constexpr Bilingual kFieldBegun{"Begun", "Inizio"};
constexpr Bilingual kFieldEnded{"Ended", "Fine"};
constexpr Bilingual kFieldTechnician{"Technician", "Tecnico"};
constexpr Bilingual kFieldInstrument{"Meter", "Strumento"};
constexpr Bilingual kFieldLogo{"Logo", "Logo"};
constexpr Bilingual kFieldPlan{"Plan", "Piano"};
constexpr Bilingual kFieldTime{"Time", "Ora"};
constexpr Bilingual kFieldProgram{"Program", "Programma"};
constexpr Bilingual kFieldMode{"Mode", "Modo"};
constexpr Bilingual kFieldFrequency{"Frequency", "Frequenza"};
constexpr Bilingual kFieldOscillator{"Oscillator", "Oscillatore"};
constexpr Bilingual kFieldUnit{"Unit", "Unità"};
constexpr Bilingual kFieldVerdict{"Verdict", "Esito"};
constexpr Bilingual kFieldLimits{"Limits %1", "Limiti %1"};
constexpr Bilingual kMergeNew{
    "New: %1 sites, %2 visits, %3 measurements. Here already: %4. Not alike: %5.",
    "Nuovi: %1 siti, %2 visite, %3 misure. Già presenti: %4. Diversi: %5."};

QString exactly(double number) {
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString exactly(float number) {
    return exactly(value_of(std::optional(number)).toDouble());
}

QString text_of(const std::optional<double>& number) {
    return number ? exactly(*number) : QString();
}

QString instant_text(const Instant& instant) {
    return QString::fromStdString(measurement::time_text(instant.wall()));
}

/// To the last digit, with the offset: what differs has to be seen.
QString exact_instant(const std::optional<Instant>& instant) {
    if (!instant) return {};
    return QStringLiteral("%1 (UTC %2 s, %3 s)")
        .arg(instant_text(*instant), exactly(instant->utc))
        .arg(instant->offset);
}

QString exact_reading(const measurement::Reading& reading) {
    if (!reading.measured()) return {};
    return QString::fromLatin1(measurement::mark_text(reading.mark)) + exactly(reading.value);
}

QString limits_text(const std::optional<measurement::Limits>& limits) {
    if (!limits) return {};
    return text_of(limits->minimum) + QStringLiteral(" … ") + text_of(limits->maximum);
}

QString mhz_text(const std::optional<float>& mhz) {
    return mhz ? exactly(*mhz) : QString();
}

QString id_words(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces);
}

/// Collects what differs.
class Differences {
  public:
    explicit Differences(const Texts& texts) : texts_(texts) {}
    QList<ConflictLine> lines;

    void between(const Site& mine, const Site& theirs) {
        add(kFieldName, mine.name, theirs.name);
        add(kFieldAddress, mine.address, theirs.address);
        add(kFieldCustomer, mine.customer, theirs.customer);
        add(kFieldRemarks, mine.remarks, theirs.remarks);
    }

    void between(const Visit& mine, const Visit& theirs) {
        add(kFieldSite, id_words(mine.site), id_words(theirs.site));
        add(kFieldBegun, exact_instant(mine.begun), exact_instant(theirs.begun));
        add(kFieldEnded, exact_instant(mine.ended), exact_instant(theirs.ended));
        add(kFieldTechnician, mine.technician, theirs.technician);
        add(kFieldInstrument, mine.instrument, theirs.instrument);
        add(kFieldLogo, mine.logo, theirs.logo);
        add(kFieldPlan, mine.plan, theirs.plan);
        add(kFieldRemarks, mine.remarks, theirs.remarks);
    }

    void between(const VisitMeasurement& mine, const VisitMeasurement& theirs) {
        const measurement::Measurement& one = mine.measurement;
        const measurement::Measurement& other = theirs.measurement;
        add(kFieldTime, exact_instant(mine.instant), exact_instant(theirs.instant));
        add(kFieldPlan, one.program.plan, other.program.plan);
        add(kFieldProgram, one.program.number, other.program.number);
        add(kFieldMode, measurement::mode_text(one.mode), measurement::mode_text(other.mode));
        add(kFieldFrequency, mhz_text(one.frequency), mhz_text(other.frequency));
        add(kFieldOscillator, mhz_text(one.oscillator), mhz_text(other.oscillator));
        add(kFieldUnit, measurement::unit_text(one.unit), measurement::unit_text(other.unit));
        add(kFieldVerdict, measurement::verdict_text(one.verdict),
            measurement::verdict_text(other.verdict));
        for (std::size_t k = 0; k < measurement::kAllQuantities; ++k) between(one, other, k);
    }

  private:
    void between(const measurement::Measurement& one, const measurement::Measurement& other,
                 std::size_t quantity) {
        const QString name = QString::fromLatin1(measurement::kQuantityNames[quantity]).toUpper();
        add(name, exact_reading(one.readings[quantity]), exact_reading(other.readings[quantity]));
        add(texts_.pick(kFieldLimits).arg(name), limits_text(one.limits[quantity]),
            limits_text(other.limits[quantity]));
    }

    void add(const Bilingual& what, const QString& mine, const QString& theirs) {
        add(texts_.pick(what), mine, theirs);
    }
    void add(const QString& what, const QString& mine, const QString& theirs) {
        if (mine != theirs) lines.push_back({what, mine, theirs});
    }

    const Texts& texts_;
};

QString title_of(const Site& site, const Texts& texts) {
    return texts.pick(kOfSite).arg(site.name);
}
QString title_of(const Visit& visit, const Texts& texts) {
    return texts.pick(kOfVisit).arg(instant_text(visit.begun));
}
QString title_of(const VisitMeasurement& row, const Texts& texts) {
    return texts.pick(kOfRow).arg(instant_text(row.instant),
                                  measurement::series_key(row.measurement).name());
}

}  // namespace

QList<ConflictLine> conflict_lines(const Conflict& conflict, const Texts& texts) {
    Differences differences(texts);
    std::visit(
        [&](const auto& mine) {
            using Kind = std::decay_t<decltype(mine)>;
            differences.between(mine, std::get<Kind>(conflict.theirs));
        },
        conflict.mine);
    return differences.lines;
}

QString conflict_title(const Conflict& conflict, const Texts& texts) {
    return std::visit([&](const auto& mine) { return title_of(mine, texts); }, conflict.mine);
}

QString merge_text(const SiteMerge& merge, const Texts& texts) {
    return texts.pick(kMergeNew)
        .arg(merge.new_sites)
        .arg(merge.new_visits)
        .arg(merge.new_rows)
        .arg(merge.known)
        .arg(merge.conflicts.size());
}

}  // namespace m47::sites
