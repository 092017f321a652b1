// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractItemModel>
#include <functional>
#include <optional>
#include <vector>

#include "site_list.h"
#include "texts.h"

namespace m47::sites {

/// Sites, and under each its visits, which are read when it is first opened.
class SiteTree : public QAbstractItemModel {
    Q_OBJECT
  public:
    using QAbstractItemModel::QAbstractItemModel;

    /// The visits at a site that are to be shown; what it throws ends the caller's handler.
    std::function<std::vector<Visit>(const QUuid& site)> visits_of;
    std::function<bool(const QUuid& visit)> has_failed;
    /// A fault of the file while the view itself asks for visits; the site is shown without any.
    std::function<void(const StoreError& error)> on_fault;

    void show(std::vector<SiteLine> sites, const Texts& texts);

    /// The site of `index`, or of the visit there; nullptr where it is invalid.
    const SiteLine* site(const QModelIndex& index) const;
    /// The visit of `index`; nullptr where it is a site.
    const Visit* visit(const QModelIndex& index) const;
    /// Invalid where it is not shown. That of a visit reads the visits of its site.
    QModelIndex index_of(const QUuid& site);
    QModelIndex index_of(const QUuid& site, const QUuid& visit);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    struct Branch {
        SiteLine line;
        std::optional<std::vector<Visit>> visits;
    };
    QVariant site_data(const SiteLine& line, int column, int role) const;
    QVariant visit_data(const QModelIndex& index, int role) const;

    std::vector<Branch> branches_;
    Texts texts_;
};

}  // namespace m47::sites
