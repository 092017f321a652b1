// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_merge.h"

#include <QHash>
#include <algorithm>
#include <functional>
#include <optional>

namespace m47::sites {
namespace {

constexpr Bilingual kChangedMeanwhile{
    "The sites have changed meanwhile: look at what the file brings once more.",
    "I siti sono cambiati nel frattempo: rivedere che cosa porta il file."};

bool alike(const Site& one, const Site& other) {
    return one == other;
}
bool alike(const Visit& one, const Visit& other) {
    return one == other;
}
bool alike(const VisitMeasurement& one, const VisitMeasurement& other) {
    return same_row(one, other);
}

bool alike(const Conflict& one, const Conflict& other) {
    const auto same = [](const Conflict::Side& a, const Conflict::Side& b) {
        return a.index() == b.index() && std::visit(
                                             [&b](const auto& mine) {
                                                 using Kind = std::decay_t<decltype(mine)>;
                                                 return alike(mine, std::get<Kind>(b));
                                             },
                                             a);
    };
    return same(one.mine, other.mine) && same(one.theirs, other.theirs);
}

/// What is done with what a file brings.
struct Deeds {
    std::function<void(const Conflict::Side& theirs)> bring;
    std::function<void(const Conflict& conflict)> differ;
};

/// Goes through a file beside a store.
class Merging {
  public:
    Merging(const SiteStore& store, SiteMerge& merge, Deeds deeds)
        : store_(store), merge_(merge), deeds_(std::move(deeds)) {
        for (const Site& site : store.sites()) sites_.insert(site.id, site);
    }

    void take(const SiteFile& file) {
        for (const SiteWithVisits& whole : file) {
            take_one(whole.site, found(sites_, whole.site.id), merge_.new_sites);
            for (const VisitWithRows& visit : whole.visits) take_visit(visit);
        }
    }

  private:
    template <typename Kind>
    static std::optional<Kind> found(const QHash<QUuid, Kind>& known, const QUuid& id) {
        const auto place = known.constFind(id);
        return place != known.cend() ? std::optional(*place) : std::nullopt;
    }

    template <typename Kind>
    void take_one(const Kind& theirs, const std::optional<Kind>& mine, int& fresh) {
        if (!mine) {
            ++fresh;
            deeds_.bring(theirs);
        } else if (alike(*mine, theirs)) {
            ++merge_.known;
        } else {
            deeds_.differ({*mine, theirs});
        }
    }

    void take_visit(const VisitWithRows& whole) {
        const std::optional<Visit> mine = store_.visit(whole.visit.id);
        QHash<QUuid, VisitMeasurement> rows;
        if (mine)
            for (const VisitMeasurement& row : store_.measurements(mine->id))
                rows.insert(row.id, row);
        take_one(whole.visit, mine, merge_.new_visits);
        for (const VisitMeasurement& row : whole.rows)
            take_one(row, found(rows, row.id), merge_.new_rows);
    }

    const SiteStore& store_;
    SiteMerge& merge_;
    Deeds deeds_;
    QHash<QUuid, Site> sites_;
};

void store_side(SiteStore& store, const Conflict::Side& side) {
    std::visit([&store](const auto& one) { store.store(one); }, side);
}

}  // namespace

QUuid Conflict::id() const {
    return std::visit([](const auto& side) { return side.id; }, mine);
}

bool SiteMerge::changes_anything() const {
    return new_sites + new_visits + new_rows > 0 ||
           std::ranges::any_of(conflicts, &Conflict::take_theirs);
}

SiteMerge plan_merge(const SiteFile& file, const SiteStore& store) {
    SiteMerge merge;
    Merging(store, merge,
            {.bring = [](const Conflict::Side&) {},
             .differ = [&](const Conflict& one) { merge.conflicts.push_back(one); }})
        .take(file);
    return merge;
}

void apply_merge(const SiteFile& file, const SiteMerge& chosen, SiteStore& store) {
    const auto bring = [&](const Conflict::Side& theirs) { store_side(store, theirs); };
    store.together([&] {
        SiteMerge now;
        std::size_t next = 0;
        const auto differ = [&](const Conflict& one) {
            if (next == chosen.conflicts.size() || !alike(chosen.conflicts[next], one))
                throw Fault(kChangedMeanwhile);
            if (chosen.conflicts[next].take_theirs) bring(one.theirs);
            ++next;
        };
        Merging(store, now, {bring, differ}).take(file);
        if (next != chosen.conflicts.size()) throw Fault(kChangedMeanwhile);
    });
}

}  // namespace m47::sites
