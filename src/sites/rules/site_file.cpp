// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_file.h"

#include <algorithm>

namespace m47::sites {
namespace {

bool same_reading(const measurement::Reading& one, const measurement::Reading& other) {
    if (!one.measured() || !other.measured()) return one.measured() == other.measured();
    return one.value == other.value && one.mark == other.mark;
}

}  // namespace

SiteFile sites_of(const SiteStore& store, const QList<QUuid>& chosen) {
    SiteFile file;
    for (const Site& site : store.sites()) {
        if (!chosen.contains(site.id)) continue;
        SiteWithVisits whole{site, {}};
        for (const Visit& visit : store.visits(site.id))
            whole.visits.push_back({visit, store.measurements(visit.id)});
        file.push_back(std::move(whole));
    }
    return file;
}

bool same_row(const VisitMeasurement& one, const VisitMeasurement& other) {
    const measurement::Measurement& a = one.measurement;
    const measurement::Measurement& b = other.measurement;
    return one.id == other.id && one.visit == other.visit && one.instant == other.instant &&
           a.program == b.program && a.mode == b.mode && a.frequency == b.frequency &&
           a.oscillator == b.oscillator && a.unit == b.unit && a.limits == b.limits &&
           a.verdict == b.verdict && std::ranges::equal(a.readings, b.readings, same_reading);
}

}  // namespace m47::sites
