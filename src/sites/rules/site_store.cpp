// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_store.h"

#include <algorithm>
#include <functional>

#include "site_connection.h"
#include "store_file.h"

namespace m47::sites {
namespace {

template <typename Work>
auto told(const Work& work) {
    return db::told_as<StoreFault>(work);
}

/// The engine knows the capitals of ASCII alone: what it has put in order is mostly, but not
/// always.
template <typename Entry, typename SiteOf>
std::vector<Entry> by_name(std::vector<Entry> entries, const SiteOf& site_of) {
    const auto before = [](const Site& one, const Site& other) {
        return QString::compare(one.name, other.name, Qt::CaseInsensitive) < 0;
    };
    if (!std::ranges::is_sorted(entries, before, site_of))
        std::ranges::stable_sort(entries, before, site_of);
    return entries;
}

}  // namespace

class SiteStore::Connection : public SiteConnection {
  public:
    using SiteConnection::SiteConnection;
};

std::unique_ptr<SiteStore> SiteStore::open(const QString& path, StoreError& error) {
    if (const auto fault = make_site_file(path)) {
        error = *fault;
        return nullptr;
    }
    try {
        auto store = std::unique_ptr<SiteStore>(new SiteStore(path));
        const auto fault = prepare_site_file(store->connection(), path);
        if (!fault) return store;
        error = *fault;
    } catch (const db::EngineFault& fault) {
        error = db::own_file_error(fault);
    }
    return nullptr;
}

SiteStore::SiteStore(const QString& path)
    : path_(path), connection_(std::make_unique<Connection>(path)) {}

SiteStore::~SiteStore() = default;

std::vector<Site> SiteStore::sites() const {
    return by_name(told([this] { return connection_->sites(); }), std::identity());
}

std::vector<SiteLine> SiteStore::site_lines() const {
    return by_name(told([this] { return connection_->site_lines(); }), &SiteLine::site);
}

std::vector<QUuid> SiteStore::failed_visits() const {
    return told([this] { return connection_->failed_visits(); });
}

std::vector<VisitDate> SiteStore::visit_dates() const {
    return told([this] { return connection_->visit_dates(); });
}

std::vector<VisitMeasurement> SiteStore::over_visits(const QUuid& site,
                                                     const measurement::SeriesKey& program) const {
    return told([&] { return connection_->over_visits(site, program); });
}

void SiteStore::each_word(
    const std::function<void(const QUuid& site, const QString& words)>& take) const {
    told([&] { connection_->each_word(take); });
}

std::vector<Visit> SiteStore::visits(const QUuid& site) const {
    return told([&] { return connection_->visits_at(site); });
}

std::optional<Visit> SiteStore::visit(const QUuid& id) const {
    return told([&] { return connection_->visit(id); });
}

std::vector<VisitMeasurement> SiteStore::measurements(const QUuid& visit) const {
    return told([&] { return connection_->measurements(visit); });
}

void SiteStore::store(const Site& site) {
    told([&] { connection_->store(site); });
}

void SiteStore::store(const Visit& visit) {
    told([&] { connection_->store(visit); });
}

void SiteStore::store(const VisitMeasurement& measurement) {
    told([&] { connection_->together([&] { connection_->store(measurement); }); });
}

void SiteStore::remove_site(const QUuid& id) {
    told([&] { connection_->remove_site(id); });
}

void SiteStore::remove_visit(const QUuid& id) {
    told([&] { connection_->remove_visit(id); });
}

void SiteStore::together(const std::function<void()>& work) {
    told([&] { connection_->together(work); });
}

void SiteStore::wait_for_locks(int milliseconds) {
    told([&] {
        db::Query(connection(), QStringLiteral("PRAGMA busy_timeout = %1").arg(milliseconds));
    });
}

const QSqlDatabase& SiteStore::connection() const {
    return connection_->database();
}

}  // namespace m47::sites
