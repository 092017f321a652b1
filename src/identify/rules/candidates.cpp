// SPDX-License-Identifier: GPL-3.0-or-later
#include "candidates.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <map>

#include "scan_reader.h"

namespace m47::identify {
namespace {

/// Positions so near to the next are one answer, degrees; tables round to tenths.
constexpr double kSamePosition = 0.5 + 0.01;
/// No scan table is longer.
constexpr qint64 kLargestTable = 1 << 20;
constexpr double kKilo = 1000;
/// No satellite sends below it: a smaller number is meant in MHz.
constexpr double kLowestKhz = 100000;
/// What the meter's demodulator takes, MS/s.
constexpr double kLowestRate = 1.5;
constexpr double kHighestRate = 45;
/// A linear LNB passes half of a circular wave, and the other way round.
constexpr double kOtherKindDb = 3;
/// Two entries of one transponder are often some hundred kHz apart.
constexpr double kSameMhz = 1.5;
/// What differs more in its symbol rate the demodulator does not take for the other.
constexpr double kSameRate = 0.004;

bool is_dvb_s(const plans::Transponder& transponder) {
    return transponder.system == u"DVBS" &&
           !transponder.modulation.contains(QLatin1String("PSK/8")) &&
           !transponder.modulation.contains(QLatin1String("8PSK"));
}

std::vector<Carrier> carriers_of(const plans::Transponder& transponder, double east,
                                 const Lnb& lnb) {
    if (!transponder.system.startsWith(QLatin1String("DVBS"))) return {};
    const double number = transponder.frequency.toDouble();
    const double mhz = number < kLowestKhz ? number : number / kKilo;
    const double rate = transponder.symbol_rate.toDouble() / kKilo / kKilo;
    if (!(rate >= kLowestRate && rate <= kHighestRate) || transponder.polarisation.isEmpty())
        return {};
    const char polarisation = transponder.polarisation.at(0).toLatin1();
    // Through the other kind of LNB both turns come at once and disturb each other.
    const bool lockable = is_dvb_s(transponder) && lnb.separates(polarisation);
    const double loss = lnb.separates(polarisation) ? 0 : kOtherKindDb;
    std::vector<Carrier> carriers;
    for (const Place& place : lnb.places(mhz, polarisation))
        carriers.push_back(
            {place.state, place.if_mhz, rate, lockable, mhz, polarisation, loss, east});
    return carriers;
}

bool is_same(const Carrier& one, const Carrier& other) {
    return one.state == other.state && one.polarisation == other.polarisation &&
           one.lockable == other.lockable && std::abs(one.if_mhz - other.if_mhz) < kSameMhz &&
           std::abs(one.rate - other.rate) < kSameRate * one.rate;
}

QString satellite_name(const QString& table) {
    static const QRegularExpression kPosition(QStringLiteral("[-_]?\\d+(\\.\\d+)?[EW]$"));
    return QString(table).remove(kPosition);
}

/// What is said in the names of the positions that are one answer, "28.2E/28.5E".
void add_position(Candidate& candidate, double east) {
    if (!candidate.positions.empty() && std::abs(candidate.positions.back() - east) < 0.01) return;
    candidate.positions.push_back(east);
    const QString text = position_text(east);
    candidate.name += (candidate.name.isEmpty() ? QString() : QStringLiteral("/")) + text;
}

void add_table(Candidate& candidate, const NamedTable& table, const Lnb& lnb) {
    bool received = false;
    for (const plans::Transponder& transponder : plans::read_transponders(table.text)) {
        const std::vector<Carrier> carriers =
            carriers_of(transponder, *position_of(table.name), lnb);
        candidate.carriers.insert(candidate.carriers.end(), carriers.begin(), carriers.end());
        received = received || !carriers.empty();
    }
    if (!received) return;
    add_position(candidate, *position_of(table.name));
    candidate.satellites += satellite_name(table.name);
}

}  // namespace

int Candidate::lockable() const {
    return static_cast<int>(std::count_if(carriers.begin(), carriers.end(),
                                          [](const Carrier& carrier) { return carrier.lockable; }));
}

std::optional<double> position_of(const QString& name) {
    static const QRegularExpression kPosition(QStringLiteral("(\\d+(?:\\.\\d+)?)([EW])$"));
    const QRegularExpressionMatch match = kPosition.match(name);
    if (!match.hasMatch()) return std::nullopt;
    const double degrees = match.captured(1).toDouble();
    if (degrees > 180) return std::nullopt;
    return match.captured(2) == u"E" ? degrees : -degrees;
}

QString position_text(double east) {
    return QString::number(std::abs(east), 'f', 1) + (east < 0 ? u'W' : u'E');
}

double arc_between(double one, double other) {
    const double apart = std::fmod(std::abs(one - other), 360.0);
    return std::min(apart, 360.0 - apart);
}

void join_same_carriers(Candidate& candidate) {
    std::vector<Carrier> kept;
    for (const Carrier& carrier : candidate.carriers) {
        const auto met = std::find_if(kept.begin(), kept.end(), [&](const Carrier& other) {
            return is_same(other, carrier);
        });
        if (met == kept.end()) kept.push_back(carrier);
    }
    candidate.carriers = std::move(kept);
}

std::vector<Candidate> candidates_of_tables(const std::vector<NamedTable>& tables, const Lnb& lnb) {
    std::multimap<double, const NamedTable*> by_position;
    for (const NamedTable& table : tables)
        if (const auto east = position_of(table.name)) by_position.emplace(*east, &table);
    std::vector<Candidate> candidates;
    double last = -360;
    for (const auto& [east, table] : by_position) {
        if (east - last > kSamePosition) candidates.push_back({});
        last = east;
        add_table(candidates.back(), *table, lnb);
    }
    std::erase_if(candidates,
                  [](const Candidate& candidate) { return candidate.carriers.empty(); });
    for (Candidate& candidate : candidates) join_same_carriers(candidate);
    return candidates;
}

std::vector<NamedTable> read_tables(const QString& folder) {
    std::vector<NamedTable> tables;
    const QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files | QDir::Readable, QDir::Name)) {
        QFile file(dir.filePath(name));
        if (file.size() > kLargestTable || !file.open(QIODevice::ReadOnly)) continue;
        tables.push_back({name, QString::fromUtf8(file.readAll())});
    }
    return tables;
}

}  // namespace m47::identify
