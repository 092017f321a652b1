// SPDX-License-Identifier: GPL-3.0-or-later
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>

#include "measurement_output.h"
#include "site_file.h"
#include "site_file_names.h"
#include "site_values.h"

namespace m47::sites {
namespace {

using measurement::Measurement;

constexpr Bilingual kTooMuch{
    "These sites are more than one file may hold: choose fewer at a time.",
    "Questi siti sono più di quanto un file possa contenere: sceglierne meno alla volta."};
constexpr Bilingual kUnfitText{
    "A text of these sites is too long for a file, or holds characters that are none.",
    "Un testo di questi siti è troppo lungo per un file, o contiene caratteri non validi."};

/// Not one row fits into less; so more rows are refused before their memory is taken.
constexpr std::size_t kLeastRow = 100;

/// Numbers of single precision by their shortest text, where that is the same number again.
QJsonValue json_of(float number) {
    const double shortest_text = value_of(std::optional(number)).toDouble();
    return static_cast<float>(shortest_text) == number ? shortest_text
                                                       : static_cast<double>(number);
}

void put(QJsonObject& object, const char* name, const std::optional<float>& number) {
    if (number && std::isfinite(*number)) object[QLatin1String(name)] = json_of(*number);
}

/// An empty text is left out.
void put(QJsonObject& object, const char* name, const QString& text) {
    if (text.isEmpty()) return;
    if (text.size() > kMostSiteText || text.contains(QChar(u'\0')) || !text.isValidUtf16())
        throw Fault(kUnfitText);
    object[QLatin1String(name)] = text;
}

QString id_text(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces);
}

QJsonObject json_of(const Instant& instant) {
    return {{QLatin1String(member::kUtc), instant.utc},
            {QLatin1String(member::kOffset), instant.offset}};
}

QJsonObject readings_of(const Measurement& measured) {
    QJsonObject readings;
    for (std::size_t k = 0; k < measurement::kAllQuantities; ++k) {
        const measurement::Reading& reading = measured.readings[k];
        if (!std::isfinite(reading.value)) continue;
        QJsonObject one{{QLatin1String(member::kValue), json_of(reading.value)}};
        put(one, member::kMark, QString::fromLatin1(measurement::mark_text(reading.mark)));
        readings[QLatin1String(measurement::kQuantityNames[k])] = one;
    }
    return readings;
}

void put_side(QJsonObject& limits, const char* name, const std::optional<double>& side) {
    if (side && std::isfinite(*side)) limits[QLatin1String(name)] = *side;
}

QJsonObject limits_of(const Measurement& measured) {
    QJsonObject limits;
    for (std::size_t k = 0; k < measurement::kAllQuantities; ++k) {
        if (!measured.limits[k]) continue;
        QJsonObject one;
        put_side(one, member::kMinimum, measured.limits[k]->minimum);
        put_side(one, member::kMaximum, measured.limits[k]->maximum);
        limits[QLatin1String(measurement::kQuantityNames[k])] = one;
    }
    return limits;
}

QJsonObject json_of(const VisitMeasurement& row) {
    const Measurement& measured = row.measurement;
    QJsonObject object{{QLatin1String(member::kId), id_text(row.id)},
                       {QLatin1String(member::kInstant), json_of(row.instant)}};
    put(object, member::kPlan, measured.program.plan);
    put(object, member::kProgram, measured.program.number);
    put(object, member::kMode, measurement::mode_text(measured.mode));
    put(object, member::kFrequency, measured.frequency);
    put(object, member::kOscillator, measured.oscillator);
    put(object, member::kUnit, measurement::unit_text(measured.unit));
    put(object, member::kVerdict, measurement::verdict_text(measured.verdict));
    const QJsonObject readings = readings_of(measured);
    if (!readings.isEmpty()) object[QLatin1String(member::kReadings)] = readings;
    const QJsonObject limits = limits_of(measured);
    if (!limits.isEmpty()) object[QLatin1String(member::kLimits)] = limits;
    return object;
}

QJsonObject json_of(const VisitWithRows& whole) {
    const Visit& visit = whole.visit;
    QJsonObject object{{QLatin1String(member::kId), id_text(visit.id)},
                       {QLatin1String(member::kBegun), json_of(visit.begun)}};
    if (visit.ended) object[QLatin1String(member::kEnded)] = json_of(*visit.ended);
    put(object, member::kTechnician, visit.technician);
    put(object, member::kInstrument, visit.instrument);
    put(object, member::kLogo, visit.logo);
    put(object, member::kPlan, visit.plan);
    put(object, member::kRemarks, visit.remarks);
    QJsonArray rows;
    for (const VisitMeasurement& row : whole.rows) rows.append(json_of(row));
    object[QLatin1String(member::kMeasurements)] = rows;
    return object;
}

QJsonObject json_of(const SiteWithVisits& whole) {
    QJsonObject object{{QLatin1String(member::kId), id_text(whole.site.id)}};
    put(object, member::kName, whole.site.name);
    put(object, member::kAddress, whole.site.address);
    put(object, member::kCustomer, whole.site.customer);
    put(object, member::kRemarks, whole.site.remarks);
    QJsonArray visits;
    for (const VisitWithRows& visit : whole.visits) visits.append(json_of(visit));
    object[QLatin1String(member::kVisits)] = visits;
    return object;
}

void need_room(const SiteFile& sites) {
    std::size_t rows = 0;
    for (const SiteWithVisits& site : sites)
        for (const VisitWithRows& visit : site.visits) rows += visit.rows.size();
    if (rows > static_cast<std::size_t>(kMostSiteFile) / kLeastRow) throw Fault(kTooMuch);
}

}  // namespace

QByteArray site_file_bytes(const SiteFile& sites) {
    need_room(sites);
    QJsonArray array;
    for (const SiteWithVisits& site : sites) array.append(json_of(site));
    const QJsonObject file{{QLatin1String(member::kFormat), QLatin1String(member::kSiteFormat)},
                           {QLatin1String(member::kVersion), member::kSiteVersion},
                           {QLatin1String(member::kSites), array}};
    const QByteArray bytes = QJsonDocument(file).toJson(QJsonDocument::Compact) + '\n';
    if (bytes.size() > kMostSiteFile) throw Fault(kTooMuch);
    return bytes;
}

}  // namespace m47::sites
