// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_search.h"

#include <QHash>
#include <QStringList>
#include <algorithm>

namespace m47::sites {
namespace {

/// Between two texts, so that no word is found across them.
constexpr QChar kBetween = u'\n';

QString words_of(const Site& site) {
    return QStringList{site.name, site.address, site.customer, site.remarks}.join(kBetween);
}

}  // namespace

SiteSearch::SiteSearch(const SiteStore& store) {
    QHash<QUuid, std::size_t> places;
    for (const Site& site : store.sites()) {
        places.insert(site.id, entries_.size());
        entries_.push_back({site.id, words_of(site).toCaseFolded()});
    }
    store.each_word([&](const QUuid& site, const QString& words) {
        const auto place = places.constFind(site);
        if (words.isEmpty() || place == places.cend()) return;
        entries_[*place].words += kBetween + words.toCaseFolded();
    });
}

std::vector<QUuid> SiteSearch::find(const QString& typed) const {
    const QStringList wanted = typed.toCaseFolded().simplified().split(u' ', Qt::SkipEmptyParts);
    std::vector<QUuid> found;
    for (const Entry& entry : entries_)
        if (std::ranges::all_of(wanted, [&](const QString& w) { return entry.words.contains(w); }))
            found.push_back(entry.site);
    return found;
}

}  // namespace m47::sites
