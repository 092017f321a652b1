// SPDX-License-Identifier: GPL-3.0-or-later
#include "what_got_worse.h"

#include <algorithm>
#include <unordered_set>

namespace m47::sites {
namespace {

using Rows = std::vector<VisitMeasurement>;

/// True where `rows` have every program of `others` by its own key.
bool has_all(const Rows& rows, const Rows& others) {
    std::unordered_set<measurement::SeriesKey, measurement::SeriesKeyHash> known;
    for (const VisitMeasurement& one : rows) known.insert(program_key(one));
    return std::ranges::all_of(
        others, [&](const VisitMeasurement& one) { return known.contains(program_key(one)); });
}

/// Adds to `rows` what of `visit` they lack and `others` have; true where nothing is lacking then.
bool fill(Rows& rows, const Rows& others, const Rows& visit) {
    if (has_all(rows, others)) return true;
    bool complete = true;
    for (const ProgramComparison& program : compare_visits(rows, others)) {
        if (program.earlier || !program.later) continue;
        bool found = false;
        for (const ProgramComparison& candidate : compare_visits(visit, {*program.later})) {
            if (!candidate.earlier || !candidate.later) continue;
            rows.push_back(*candidate.earlier);
            found = true;
        }
        complete = complete && found;
    }
    return complete;
}

bool has_fallen(const ProgramComparison& program, double decibels) {
    if (program.meaning == Meaning::lost) return true;
    const std::optional<double> fall = fall_of(program);
    return fall && *fall > decibels;
}

double weight(const ProgramComparison& program) {
    return fall_of(program).value_or(0);
}

bool is_worse_fallen(const ProgramComparison& one, const ProgramComparison& other) {
    const bool lost = one.meaning == Meaning::lost;
    const bool other_lost = other.meaning == Meaning::lost;
    return lost != other_lost ? lost : weight(one) > weight(other);
}

}  // namespace

SiteHistory history_of(const SiteStore& store, const Site& site) {
    return {site, store.visits(site.id),
            [&store](const Visit& visit) { return store.measurements(visit.id); }};
}

std::vector<SiteHistory> histories_of(const SiteStore& store) {
    std::vector<SiteHistory> all;
    for (const Site& site : store.sites()) all.push_back(history_of(store, site));
    return all;
}

std::vector<ProgramComparison> worse_since_first(const SiteHistory& history, double decibels) {
    const std::vector<Visit>& visits = history.visits;
    if (visits.size() < 2) return {};
    Rows earliest = counting(history.measurements(visits.back()));
    Rows latest = counting(history.measurements(visits.front()));
    bool complete = fill(earliest, latest, {});
    for (std::size_t k = visits.size() - 2; !complete && k > 0; --k)
        complete = fill(earliest, latest, counting(history.measurements(visits[k])));
    complete = fill(latest, earliest, {});
    for (std::size_t k = 1; !complete && k + 1 < visits.size(); ++k)
        complete = fill(latest, earliest, counting(history.measurements(visits[k])));
    std::vector<ProgramComparison> worse;
    for (ProgramComparison& program : compare_visits(earliest, latest))
        if (has_fallen(program, decibels)) worse.push_back(std::move(program));
    std::ranges::stable_sort(worse, is_worse_fallen);
    return worse;
}

std::vector<GotWorse> worst_first(std::vector<GotWorse> worse) {
    std::ranges::stable_sort(worse, [](const GotWorse& one, const GotWorse& other) {
        return is_worse_fallen(one.program, other.program);
    });
    return worse;
}

std::vector<GotWorse> what_got_worse(const std::vector<SiteHistory>& sites, double decibels) {
    std::vector<GotWorse> worse;
    for (const SiteHistory& history : sites)
        for (ProgramComparison& program : worse_since_first(history, decibels))
            worse.push_back({history.site, std::move(program)});
    return worst_first(std::move(worse));
}

}  // namespace m47::sites
