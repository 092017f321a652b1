// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "site_records.h"
#include "site_store.h"
#include "visit_comparison.h"

namespace m47::sites {

/// A program that got worse at a site; the measurements say at which visits.
struct GotWorse {
    Site site;
    ProgramComparison program;
};

/// The visits at a site, the latest first, and the measurements of each, both read when they are
/// asked for.
struct SiteHistory {
    Site site;
    std::vector<Visit> visits;
    std::function<std::vector<VisitMeasurement>(const Visit&)> measurements;
};

/// The history of `site` in `store`, which has to outlive it; and those of all sites.
SiteHistory history_of(const SiteStore& store, const Site& site);
std::vector<SiteHistory> histories_of(const SiteStore& store);

/// Every program at `history` that is lost, or whose MER or level fell by more than `decibels`,
/// between the first visit that measured it and the last one that did. Of the visits between the
/// first and the last only those are read in which a program that one of these lacks may stand.
std::vector<ProgramComparison> worse_since_first(const SiteHistory& history, double decibels);

/// `worse` in another order, the worst first: what is lost, then by how far it fell.
std::vector<GotWorse> worst_first(std::vector<GotWorse> worse);

/// That of all sites, the worst first: what is lost, then by how far it fell.
std::vector<GotWorse> what_got_worse(const std::vector<SiteHistory>& sites, double decibels);

}  // namespace m47::sites
