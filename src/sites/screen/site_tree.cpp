// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_tree.h"

#include <algorithm>

#include "tone_delegate.h"
#include "tooltips.h"
#include "visit_words.h"

namespace m47::sites {
namespace {

constexpr Bilingual kSiteColumns[] = {{"Site and visits", "Sito e visite"}, {"Visits", "Visite"}};
constexpr Bilingual kFailedVisit{"FAIL", "FAIL"};
constexpr Bilingual kOpenVisit{"not ended", "non conclusa"};

/// A visit's index holds the number of its site, from 1; that of a site 0.
std::size_t branch_of(const QModelIndex& index) {
    return index.internalId() == 0 ? static_cast<std::size_t>(index.row())
                                   : static_cast<std::size_t>(index.internalId() - 1);
}

}  // namespace

void SiteTree::show(std::vector<SiteLine> sites, const Texts& texts) {
    beginResetModel();
    texts_ = texts;
    branches_.clear();
    branches_.reserve(sites.size());
    for (SiteLine& line : sites) branches_.push_back({std::move(line), {}});
    endResetModel();
}

const SiteLine* SiteTree::site(const QModelIndex& index) const {
    return index.isValid() ? &branches_[branch_of(index)].line : nullptr;
}

const Visit* SiteTree::visit(const QModelIndex& index) const {
    if (!index.isValid() || index.internalId() == 0) return nullptr;
    return &(*branches_[branch_of(index)].visits)[static_cast<std::size_t>(index.row())];
}

QModelIndex SiteTree::index_of(const QUuid& site) {
    const auto found = std::ranges::find_if(
        branches_, [&](const Branch& branch) { return branch.line.site.id == site; });
    return found == branches_.end() ? QModelIndex()
                                    : index(static_cast<int>(found - branches_.begin()), 0);
}

QModelIndex SiteTree::index_of(const QUuid& site, const QUuid& visit) {
    const QModelIndex place = index_of(site);
    if (!place.isValid()) return {};
    if (canFetchMore(place)) fetchMore(place);
    const std::vector<Visit>& visits = *branches_[branch_of(place)].visits;
    const auto found = std::ranges::find(visits, visit, &Visit::id);
    return found == visits.end() ? QModelIndex()
                                 : index(static_cast<int>(found - visits.begin()), 0, place);
}

QModelIndex SiteTree::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) return {};
    return createIndex(row, column, parent.isValid() ? branch_of(parent) + 1 : 0);
}

QModelIndex SiteTree::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == 0) return {};
    return createIndex(static_cast<int>(branch_of(child)), 0, quintptr{0});
}

int SiteTree::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) return static_cast<int>(branches_.size());
    if (parent.internalId() != 0 || parent.column() != 0) return 0;
    const auto& visits = branches_[branch_of(parent)].visits;
    return visits ? static_cast<int>(visits->size()) : 0;
}

int SiteTree::columnCount(const QModelIndex& /*parent*/) const {
    return static_cast<int>(std::size(kSiteColumns));
}

bool SiteTree::hasChildren(const QModelIndex& parent) const {
    if (!parent.isValid()) return !branches_.empty();
    if (parent.internalId() != 0 || parent.column() != 0) return false;
    const Branch& branch = branches_[branch_of(parent)];
    return branch.visits ? !branch.visits->empty() : branch.line.visits > 0;
}

bool SiteTree::canFetchMore(const QModelIndex& parent) const {
    return parent.isValid() && parent.internalId() == 0 && !branches_[branch_of(parent)].visits;
}

void SiteTree::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) return;
    Branch& branch = branches_[branch_of(parent)];
    std::vector<Visit> visits;
    try {
        visits = visits_of(branch.line.site.id);
    } catch (const StoreFault& fault) {
        // The view asks in the middle of its own work, where nothing may be thrown.
        on_fault(fault.error());
    }
    if (visits.empty()) {
        branch.visits.emplace();
        return;
    }
    beginInsertRows(parent, 0, static_cast<int>(visits.size()) - 1);
    branch.visits = std::move(visits);
    endInsertRows();
}

QVariant SiteTree::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (visit(index)) return visit_data(index, role);
    return site_data(*site(index), index.column(), role);
}

QVariant SiteTree::site_data(const SiteLine& line, int column, int role) const {
    if (role == Qt::DisplayRole) {
        if (column == 1) return line.visits;
        return line.site.name.simplified();
    }
    if (role == Qt::TextAlignmentRole && column == 1)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole)
        return plain_tooltip(line.site.name + u'\n' + site_facts(line.site));
    return {};
}

QVariant SiteTree::visit_data(const QModelIndex& index, int role) const {
    const std::vector<Visit>& beside = *branches_[branch_of(index)].visits;
    const Visit& visit = beside[static_cast<std::size_t>(index.row())];
    const int column = index.column();
    const bool failed = column == 1 && has_failed(visit.id);
    if (role == Qt::DisplayRole) {
        if (column == 0) return visit_time(visit, beside);
        if (!visit.ended) return texts_.pick(kOpenVisit);
        return failed ? texts_.pick(kFailedVisit) : QString();
    }
    if (role == kToneRole) return static_cast<int>(failed ? Tone::bad : Tone::plain);
    if (role == Qt::TextAlignmentRole && column == 1)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole) return plain_tooltip(visit_facts(visit, texts_));
    return {};
}

QVariant SiteTree::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return texts_.pick(kSiteColumns[section]);
    if (role == Qt::TextAlignmentRole && section == 1)
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

}  // namespace m47::sites
