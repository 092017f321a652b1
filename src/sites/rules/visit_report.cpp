// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_report.h"

#include <algorithm>

#include "visit_series.h"

namespace m47::sites {
namespace {

/// The visit among `all`, the latest first, that `visit` is compared with.
std::optional<Visit> visit_before(const std::vector<Visit>& all, const Visit& visit,
                                  const VisitReportWish& wish) {
    const auto earlier = [&visit](const Visit& other) {
        return other.id != visit.id && other.begun.utc <= visit.begun.utc;
    };
    const auto behind = std::next(std::ranges::find(all, visit.id, &Visit::id));
    switch (wish.before) {
        case ReportBefore::previous:
            return behind == all.end() ? std::nullopt : std::optional(*behind);
        case ReportBefore::first:
            return behind == all.end() ? std::nullopt : std::optional(all.back());
        case ReportBefore::chosen: {
            const auto found = std::ranges::find(all, wish.chosen, &Visit::id);
            return found == all.end() || !earlier(*found) ? std::nullopt : std::optional(*found);
        }
        case ReportBefore::nothing:
            break;
    }
    return {};
}

void add_program(std::vector<ReportedProgram>& programs, const measurement::SeriesKey& key) {
    if (std::ranges::find(programs, key, &ReportedProgram::key) == programs.end())
        programs.push_back({key, {}});
}

std::vector<ReportedProgram> programs_of(const SiteStore& store, const VisitReport& report) {
    std::vector<ReportedProgram> programs;
    for (const ReportedVisit& visit : report.visits) {
        for (const VisitMeasurement& row : visit.rows) add_program(programs, program_key(row));
        for (const ProgramComparison& each : visit.compared) add_program(programs, each.key);
    }
    // What was measured later than the report is not in it.
    const double last = report.visits.empty() ? 0 : report.visits.back().visit.begun.utc;
    for (ReportedProgram& program : programs) {
        const auto is_later = [&](const VisitMeasurement& row) {
            const std::optional<Visit> visit = store.visit(row.visit);
            return !visit || visit->begun.utc > last;
        };
        program.rows = visit_series(store.over_visits(report.site.id, program.key));
        std::erase_if(program.rows, is_later);
    }
    return programs;
}

}  // namespace

std::size_t ReportedVisit::count(measurement::Verdict verdict) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        rows, [verdict](const auto& row) { return row.measurement.verdict == verdict; }));
}

VisitReport visit_report(const SiteStore& store, const Site& site, const VisitReportWish& wish) {
    VisitReport report{.site = site, .visits = {}};
    const std::vector<Visit> all = store.visits(site.id);
    // The earliest first.
    for (auto visit = all.rbegin(); visit != all.rend(); ++visit) {
        if (std::ranges::find(wish.visits, visit->id) == wish.visits.end()) continue;
        const std::vector<VisitMeasurement> rows = store.measurements(visit->id);
        ReportedVisit reported{.visit = *visit, .rows = counting(rows)};
        reported.before = visit_before(all, *visit, wish);
        if (reported.before)
            reported.compared = compare_visits(store.measurements(reported.before->id), rows);
        report.visits.push_back(std::move(reported));
    }
    report.programs = programs_of(store, report);
    return report;
}

}  // namespace m47::sites
