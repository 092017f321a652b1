// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <functional>
#include <optional>
#include <vector>

#include "engine.h"
#include "site_records.h"
#include "site_statements.h"
#include "site_store.h"

namespace m47::sites {

/// The file of sites by its statements. Every error is an EngineFault.
class SiteConnection {
  public:
    explicit SiteConnection(const QString& path) : file_(path) {}

    std::vector<Site> sites();
    std::vector<Visit> visits_at(const QUuid& site);
    std::optional<Visit> visit(const QUuid& id);
    std::vector<VisitMeasurement> measurements(const QUuid& visit);
    std::vector<VisitMeasurement> over_visits(const QUuid& site,
                                              const measurement::SeriesKey& program);
    std::vector<SiteLine> site_lines();
    std::vector<QUuid> failed_visits();
    std::vector<VisitDate> visit_dates();
    void each_word(const std::function<void(const QUuid& site, const QString& words)>& take);

    void store(const Site& site);
    void store(const Visit& visit);
    void store(const VisitMeasurement& one);
    void remove_site(const QUuid& id);
    void remove_visit(const QUuid& id);

    void together(const std::function<void()>& work);

    const QSqlDatabase& database() const { return file_.database(); }

  private:
    void change(db::KeptQuery& statement, const QVariantList& values);
    qint64 place(db::KeptQuery& find, db::KeptQuery& add, const QVariantList& values);
    QVariant place_of(const measurement::ProgramIdentity& program);
    QVariant place_of(const measurement::LimitsInForce& limits);
    void forget_places();
    const measurement::ProgramIdentity& program_at(qint64 place);
    const measurement::LimitsInForce& limits_at(qint64 place);
    VisitMeasurement measurement_in(const db::Query& row, const QUuid& visit);
    measurement::Measurement measured_in(const db::Query& row);

    db::Connection file_;
    SiteStatements statements_;
    bool together_ = false;
    // Rows that never change, by value and by number.
    QHash<std::pair<QString, QString>, qint64> program_places_;
    std::optional<std::pair<measurement::LimitsInForce, qint64>> last_limits_;
    QHash<qint64, measurement::ProgramIdentity> programs_;
    QHash<qint64, measurement::LimitsInForce> limits_;
};

}  // namespace m47::sites
