// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_connection.h"

#include <QScopeGuard>

#include "database_transaction.h"
#include "site_values.h"

namespace m47::sites {
namespace {

/// Of the visit, behind those of a measurement.
constexpr int kVisitColumn = 14;
/// Mostly no more come: what has come is not moved then.
constexpr std::size_t kUsualRows = 128;

Site site_in(const db::Query& row) {
    return {.id = id_in(row, 0),
            .name = row.value(1).toString(),
            .address = row.value(2).toString(),
            .customer = row.value(3).toString(),
            .remarks = row.value(4).toString()};
}

Visit visit_in(const db::Query& row) {
    return {.id = id_in(row, 0),
            .site = id_in(row, 1),
            .begun = instant_in(row, 2),
            .ended = row.value(4).isNull() ? std::nullopt : std::optional(instant_in(row, 4)),
            .technician = row.value(6).toString(),
            .instrument = row.value(7).toString(),
            .logo = row.value(8).toString(),
            .plan = row.value(9).toString(),
            .remarks = row.value(10).toString()};
}

/// All rows of the answer in `query`, which lets go of the file then.
template <typename Read>
auto rows_of(db::Query& query, const Read& read) {
    const auto over = qScopeGuard([&query] { query.finish(); });
    std::vector<decltype(read(query))> rows;
    rows.reserve(kUsualRows);
    while (query.next()) rows.push_back(read(query));
    return rows;
}

}  // namespace

void SiteConnection::together(const std::function<void()>& work) {
    if (together_) {
        work();
        return;
    }
    together_ = true;
    const auto over = qScopeGuard([this] { together_ = false; });
    try {
        db::DatabaseTransaction transaction(database());
        work();
        transaction.commit();
    } catch (...) {
        // What it has added is undone.
        forget_places();
        throw;
    }
}

void SiteConnection::change(db::KeptQuery& statement, const QVariantList& values) {
    statement.run(database(), values).finish();
}

std::vector<Site> SiteConnection::sites() {
    return rows_of(statements_.all_sites.run(database()), site_in);
}

std::vector<Visit> SiteConnection::visits_at(const QUuid& site) {
    return rows_of(statements_.visits_of_site.run(database(), {value_of(site)}), visit_in);
}

std::optional<Visit> SiteConnection::visit(const QUuid& id) {
    const auto found = rows_of(statements_.one_visit.run(database(), {value_of(id)}), visit_in);
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::vector<VisitMeasurement> SiteConnection::measurements(const QUuid& visit) {
    return rows_of(statements_.rows_of_visit.run(database(), {value_of(visit)}),
                   [&](const db::Query& row) { return measurement_in(row, visit); });
}

std::vector<VisitMeasurement> SiteConnection::over_visits(const QUuid& site,
                                                          const measurement::SeriesKey& program) {
    const measurement::ProgramIdentity& identity = program.program;
    const bool known = identity.known();
    db::KeptQuery& statement = known ? statements_.rows_of_program : statements_.rows_of_tuning;
    const QVariantList values =
        known ? QVariantList{value_of(site), value_of(identity.plan), value_of(identity.number)}
              : QVariantList{value_of(site), value_of(program.frequency),
                             value_of(program.oscillator)};
    return rows_of(statement.run(database(), values), [this](const db::Query& row) {
        return measurement_in(row, id_in(row, kVisitColumn));
    });
}

std::vector<SiteLine> SiteConnection::site_lines() {
    return rows_of(statements_.lines_of_sites.run(database()), [](const db::Query& row) {
        SiteLine line{.site = site_in(row), .visits = row.value(5).toInt()};
        if (line.visits > 0) line.last = instant_in(row, 6);
        return line;
    });
}

std::vector<QUuid> SiteConnection::failed_visits() {
    return rows_of(statements_.failed_visits.run(database()),
                   [](const db::Query& row) { return id_in(row, 0); });
}

std::vector<VisitDate> SiteConnection::visit_dates() {
    return rows_of(statements_.dates_of_visits.run(database()), [](const db::Query& row) {
        return VisitDate{id_in(row, 0), id_in(row, 1), instant_in(row, 2)};
    });
}

void SiteConnection::each_word(
    const std::function<void(const QUuid& site, const QString& words)>& take) {
    db::Query& query = statements_.words_of_visits.run(database());
    const auto over = qScopeGuard([&query] { query.finish(); });
    while (query.next())
        for (const int column : {1, 2, 3}) take(id_in(query, 0), query.value(column).toString());
}

VisitMeasurement SiteConnection::measurement_in(const db::Query& row, const QUuid& visit) {
    VisitMeasurement one{.id = id_in(row, 0),
                         .visit = visit,
                         .instant = {row.value(1).toDouble(), 0},
                         .measurement = measured_in(row)};
    one.instant.offset = take_small(row, 13, one.measurement);
    one.measurement.instant = one.instant.wall();
    return one;
}

measurement::Measurement SiteConnection::measured_in(const db::Query& row) {
    measurement::Measurement measured;
    if (const QVariant program = row.value(2); !program.isNull())
        measured.program = program_at(program.toLongLong());
    measured.frequency = number_in(row, 3);
    measured.oscillator = number_in(row, 4);
    take_values(row, 5, measured);
    if (const QVariant limits = row.value(12); !limits.isNull())
        measured.limits = limits_at(limits.toLongLong());
    return measured;
}

const measurement::ProgramIdentity& SiteConnection::program_at(qint64 place) {
    auto found = programs_.constFind(place);
    if (found == programs_.cend()) {
        const auto read = rows_of(statements_.program_at.run(database(), {place}), [](const db::
                                                                                          Query&
                                                                                              row) {
            return measurement::ProgramIdentity{row.value(0).toString(), row.value(1).toString()};
        });
        found = programs_.insert(place, read.empty() ? measurement::ProgramIdentity() : read[0]);
    }
    return *found;
}

const measurement::LimitsInForce& SiteConnection::limits_at(qint64 place) {
    auto found = limits_.constFind(place);
    if (found == limits_.cend()) {
        const auto read = rows_of(statements_.limits_at.run(database(), {place}),
                                  [](const db::Query& row) { return limits_in(row, 0); });
        found = limits_.insert(place, read.empty() ? measurement::LimitsInForce() : read[0]);
    }
    return *found;
}

void SiteConnection::store(const Site& site) {
    change(statements_.put_site, {value_of(site.id), value_of(site.name), value_of(site.address),
                                  value_of(site.customer), value_of(site.remarks)});
}

void SiteConnection::store(const Visit& visit) {
    change(statements_.put_visit, QVariantList{value_of(visit.id), value_of(visit.site)}
                                      << values_of(visit.begun) << values_of(visit.ended)
                                      << value_of(visit.technician) << value_of(visit.instrument)
                                      << value_of(visit.logo) << value_of(visit.plan)
                                      << value_of(visit.remarks));
}

void SiteConnection::store(const VisitMeasurement& one) {
    const measurement::Measurement& measured = one.measurement;
    const QVariant program = place_of(measured.program);
    const QVariant limits = place_of(measured.limits);
    change(statements_.put_measurement,
           QVariantList{value_of(one.visit), value_of(one.id)}
               << values_of(one.instant) << program << static_cast<int>(measured.mode)
               << value_of(measured.frequency) << value_of(measured.oscillator)
               << values_of_readings(measured)
               << (measured.unit ? QVariant(static_cast<int>(*measured.unit)) : QVariant())
               << limits << static_cast<int>(measured.verdict));
}

qint64 SiteConnection::place(db::KeptQuery& find, db::KeptQuery& add, const QVariantList& values) {
    const auto found = rows_of(find.run(database(), values),
                               [](const db::Query& row) { return row.value(0).toLongLong(); });
    if (!found.empty()) return found.front();
    db::Query& added = add.run(database(), values);
    const qint64 place = added.inserted_row();
    added.finish();
    return place;
}

QVariant SiteConnection::place_of(const measurement::ProgramIdentity& program) {
    if (!program.known()) return {};
    const std::pair key{program.plan, program.number};
    auto found = program_places_.constFind(key);
    if (found == program_places_.cend())
        found =
            program_places_.insert(key, place(statements_.place_of_program, statements_.add_program,
                                              {value_of(program.plan), value_of(program.number)}));
    return *found;
}

QVariant SiteConnection::place_of(const measurement::LimitsInForce& limits) {
    if (limits == measurement::LimitsInForce()) return {};
    if (!last_limits_ || last_limits_->first != limits)
        last_limits_.emplace(
            limits, place(statements_.place_of_limits, statements_.add_limits, values_of(limits)));
    return last_limits_->second;
}

void SiteConnection::forget_places() {
    program_places_.clear();
    last_limits_.reset();
    programs_.clear();
    limits_.clear();
}

void SiteConnection::remove_site(const QUuid& id) {
    change(statements_.drop_site, {value_of(id)});
}

void SiteConnection::remove_visit(const QUuid& id) {
    change(statements_.drop_visit, {value_of(id)});
}

}  // namespace m47::sites
