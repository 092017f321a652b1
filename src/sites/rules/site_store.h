// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "series_key.h"
#include "site_records.h"
#include "store_error.h"

namespace m47::sites {

/// The name of the file of sites and visits in the working folder.
inline constexpr const char* kSitesFile = "sites.sqlite";

/// A site as a list shows it.
struct SiteLine {
    Site site;
    int visits = 0;
    std::optional<Instant> last{};  ///< the begin of the latest visit
};

/// When a visit was, and where.
struct VisitDate {
    QUuid visit;
    QUuid site;
    Instant begun{};
};

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

    /// What was measured of a program at `site` over all its visits, in the order of time: that of
    /// its plan and number, or what was tuned as `program` has it. Its unit is not looked at.
    std::vector<VisitMeasurement> over_visits(const QUuid& site,
                                              const measurement::SeriesKey& program) const;
    /// All sites by name, as a list shows them.
    std::vector<SiteLine> site_lines() const;
    /// The visits in which a measurement failed its limits.
    std::vector<QUuid> failed_visits() const;
    /// All visits of all sites, in no order.
    std::vector<VisitDate> visit_dates() const;
    /// Hands over the technicians, plans and remarks of the visits at each site, each once.
    void each_word(const std::function<void(const QUuid& site, const QString& words)>& take) const;

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

    /// Of the file.
    const QString& path() const { return path_; }

  private:
    explicit SiteStore(const QString& path);

    const QString path_;
    class Connection;
    std::unique_ptr<Connection> connection_;
};

}  // namespace m47::sites
