// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "site_records.h"
#include "store_error.h"

namespace m47::sites {

/// The name of the file of sites and visits in the working folder.
inline constexpr const char* kSitesFile = "sites.sqlite";

/// The file of sites, visits and measurements. It is made at the first store; what is only looked
/// at makes no file: look whether there is one before open(). What cannot be read or written is a
/// StoreFault, and leaves the file as it was. One object a file and process: another one would take
/// its locks away.
class SiteStore {
  public:
    /// Opens the file at `path`, making it where there is none, and brings an older one up to date.
    /// Nullptr with `error` filled where it cannot be used: it is left as it is then.
    static std::unique_ptr<SiteStore> open(const QString& path, StoreError& error);
    ~SiteStore();
    SiteStore(const SiteStore&) = delete;
    SiteStore& operator=(const SiteStore&) = delete;

    /// All sites, by name.
    std::vector<Site> sites() const;
    /// The visits at `site`, the latest first.
    std::vector<Visit> visits(const QUuid& site) const;
    std::optional<Visit> visit(const QUuid& id) const;
    /// The measurements of `visit` in the order in which they were taken.
    std::vector<VisitMeasurement> measurements(const QUuid& visit) const;

    /// Each stores a new one or replaces that of the same id, at once and durably. A visit needs
    /// its site in the file, a measurement its visit; it is known by its id within that visit.
    void store(const Site& site);
    void store(const Visit& visit);
    void store(const VisitMeasurement& measurement);
    /// Removes it with all that hangs on it.
    void remove_site(const QUuid& id);
    void remove_visit(const QUuid& id);

    /// Does `work` as one transaction: all of it or, where it throws, nothing. Within `work` it may
    /// be called again.
    void together(const std::function<void()>& work);

    /// How long a lock of another program is waited for, 3 s where this is not told.
    void wait_for_locks(int milliseconds);

    /// For statements of the screens' own searches and charts, read only.
    const QSqlDatabase& connection() const;

  private:
    explicit SiteStore(const QString& path);

    class Connection;
    std::unique_ptr<Connection> connection_;
};

}  // namespace m47::sites
