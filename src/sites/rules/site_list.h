// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "site_search.h"
#include "site_store.h"

namespace m47::sites {

/// Which sites and visits are looked for.
struct SitesWanted {
    enum class Visits : std::uint8_t { all, failed, passed };

    QString typed{};                ///< as SiteSearch takes it
    std::optional<double> from{};   ///< the first instant of a begin, on the wall clock there
    std::optional<double> until{};  ///< the first one behind the last
    Visits visits = Visits::all;    ///< with a row that failed its limits, or with none

    /// Only sites with such visits are wanted.
    bool chooses_visits() const { return from || until || visits != Visits::all; }
};

/// The sites as the file had them, to be looked through. `store` has to outlive it; a StoreFault
/// where it cannot be read.
class SiteList {
  public:
    explicit SiteList(const SiteStore& store);

    /// The sites that are wanted, by name, with the number of their visits that are.
    std::vector<SiteLine> sites(const SitesWanted& wanted);
    /// The visits at `site` that are wanted, the latest first.
    std::vector<Visit> visits(const QUuid& site, const SitesWanted& wanted) const;

    bool has_failed(const QUuid& visit) const { return failed_.contains(visit); }
    bool empty() const { return lines_.empty(); }
    /// Nothing where there is no such site.
    const SiteLine* line(const QUuid& site) const;

  private:
    bool matches(const QUuid& visit, const Instant& begun, const SitesWanted& wanted) const;
    QHash<QUuid, int> visits_by_site(const SitesWanted& wanted);

    const SiteStore& store_;
    std::vector<SiteLine> lines_;
    QHash<QUuid, std::size_t> places_;
    QSet<QUuid> failed_;
    // Both read when they are first needed.
    std::unique_ptr<SiteSearch> search_;
    std::optional<std::vector<VisitDate>> dates_;
};

}  // namespace m47::sites
