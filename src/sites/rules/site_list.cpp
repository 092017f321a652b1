// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_list.h"

namespace m47::sites {

SiteList::SiteList(const SiteStore& store) : store_(store), lines_(store.site_lines()) {
    for (std::size_t k = 0; k < lines_.size(); ++k) places_.insert(lines_[k].site.id, k);
    for (const QUuid& visit : store.failed_visits()) failed_.insert(visit);
}

const SiteLine* SiteList::line(const QUuid& site) const {
    const auto place = places_.constFind(site);
    return place == places_.cend() ? nullptr : &lines_[*place];
}

bool SiteList::matches(const QUuid& visit, const Instant& begun, const SitesWanted& wanted) const {
    if (wanted.from && begun.wall() < *wanted.from) return false;
    if (wanted.until && begun.wall() >= *wanted.until) return false;
    if (wanted.visits == SitesWanted::Visits::all) return true;
    return has_failed(visit) == (wanted.visits == SitesWanted::Visits::failed);
}

QHash<QUuid, int> SiteList::visits_by_site(const SitesWanted& wanted) {
    if (!dates_) dates_ = store_.visit_dates();
    QHash<QUuid, int> visits;
    for (const VisitDate& one : *dates_)
        if (matches(one.visit, one.begun, wanted)) ++visits[one.site];
    return visits;
}

std::vector<SiteLine> SiteList::sites(const SitesWanted& wanted) {
    std::vector<SiteLine> found;
    if (wanted.typed.trimmed().isEmpty()) {
        found = lines_;
    } else {
        if (!search_) search_ = std::make_unique<SiteSearch>(store_);
        for (const QUuid& site : search_->find(wanted.typed))
            if (const SiteLine* known = line(site)) found.push_back(*known);
    }
    if (!wanted.chooses_visits()) return found;
    const QHash<QUuid, int> visits = visits_by_site(wanted);
    for (SiteLine& one : found) one.visits = visits.value(one.site.id);
    std::erase_if(found, [](const SiteLine& one) { return one.visits == 0; });
    return found;
}

std::vector<Visit> SiteList::visits(const QUuid& site, const SitesWanted& wanted) const {
    std::vector<Visit> found = store_.visits(site);
    std::erase_if(found, [&](const Visit& one) { return !matches(one.id, one.begun, wanted); });
    return found;
}

}  // namespace m47::sites
