// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUuid>
#include <cstdint>
#include <optional>
#include <vector>

#include "site_store.h"
#include "visit_comparison.h"

namespace m47::sites {

/// With what a report compares each of its visits.
enum class ReportBefore : std::uint8_t { previous, first, chosen, nothing };

/// What a report is wanted of.
struct VisitReportWish {
    std::vector<QUuid> visits;
    ReportBefore before = ReportBefore::previous;
    QUuid chosen;  ///< the visit where ReportBefore::chosen
};

/// A visit in a report.
struct ReportedVisit {
    Visit visit;
    std::vector<VisitMeasurement> rows;  ///< what counts of it
    std::optional<Visit> before{};       ///< nothing where there is none to compare with
    std::vector<ProgramComparison> compared{};

    /// So many of the rows have this verdict.
    std::size_t count(measurement::Verdict verdict) const;
};

/// A program over the visits at a site.
struct ReportedProgram {
    measurement::SeriesKey key;
    std::vector<VisitMeasurement> rows;  ///< as visit_series() gives them
};

/// What stands in the report on visits at one site.
struct VisitReport {
    Site site;
    std::vector<ReportedVisit> visits;        ///< the earliest first
    std::vector<ReportedProgram> programs{};  ///< each of the visits above, up to the last of them
};

/// Reads all of it from `store`; visits that are gone are left out, a visit is never compared with
/// itself or with a later one. A StoreFault where the store cannot be read.
VisitReport visit_report(const SiteStore& store, const Site& site, const VisitReportWish& wish);

}  // namespace m47::sites
