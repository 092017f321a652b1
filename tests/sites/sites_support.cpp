// SPDX-License-Identifier: GPL-3.0-or-later
#include "sites_support.h"

namespace m47::sites {
namespace {

constexpr double kFirstDay = 1'780'300'800;
constexpr double kHour = 3600;
constexpr int kSummerTime = 7200;

}  // namespace

QString sites_in(const QString& folder) {
    return folder + u'/' + QString::fromLatin1(kSitesFile);
}

std::unique_ptr<SiteStore> opened_sites(const QString& folder) {
    StoreError error;
    auto store = SiteStore::open(sites_in(folder), error);
    if (!store)
        qFatal("not opened: kind %d, %s", static_cast<int>(error.kind), qPrintable(error.detail));
    return store;
}

StoreError error_of_opening(const QString& path) {
    StoreError error;
    if (SiteStore::open(path, error)) return {};
    return error;
}

Site a_site(const QString& name) {
    return {.id = QUuid::createUuid(),
            .name = name,
            .address = QStringLiteral("Via Roma 7, Città"),
            .customer = QStringLiteral("Condominio \"Sole\""),
            .remarks = QStringLiteral("chiavi\ndal portiere")};
}

Visit a_visit(const Site& site, int hours) {
    return {.id = QUuid::createUuid(),
            .site = site.id,
            .begun = {kFirstDay + hours * kHour, kSummerTime},
            .technician = QStringLiteral("M. Rossi"),
            .instrument = QStringLiteral("V3.0.5"),
            .logo = QStringLiteral("ANTENNE ROSSI"),
            .plan = QStringLiteral("ASTRA"),
            .remarks = QStringLiteral("dopo il temporale")};
}

VisitMeasurement a_row(const Visit& visit, int second, const QString& number, float mer) {
    VisitMeasurement row{.id = QUuid::createUuid(),
                         .visit = visit.id,
                         .instant = {visit.begun.utc + second, visit.begun.offset},
                         .measurement = {}};
    measurement::Measurement& measured = row.measurement;
    measured.instant = row.instant.wall();
    measured.program = {QStringLiteral("ASTRA"), number};
    measured.mode = measurement::MeasureMode::digital;
    measured.frequency = 11778.2F;
    measured.oscillator = 10600.0F;
    measured.readings = {{{58.3F, measurement::RangeMark::none},
                          {1.0e-8F, measurement::RangeMark::below},
                          {mer, measurement::RangeMark::above},
                          {2.3e-4F, measurement::RangeMark::none},
                          {-0.7F, measurement::RangeMark::none},
                          {14.1F, measurement::RangeMark::none},
                          {}}};
    measured.unit = kDbm;
    measured.limits[0] = measurement::Limits{45, 75};
    measured.limits[2] = measurement::Limits{9.5, std::nullopt};
    measured.limits[5] = measurement::Limits{};
    measured.verdict = measurement::Verdict::pass;
    return row;
}

}  // namespace m47::sites
