// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <memory>
#include <vector>

#include "site_tables.h"

namespace m47::sites {

/// A SiteTable as views show it. It is sorted by the numbers of its cells, not by how they read;
/// what has none stands last.
class SiteTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void show(std::unique_ptr<SiteTable> table, const Texts& texts);
    /// Which row of the table the row `shown` is.
    int table_row(int shown) const { return order_[static_cast<std::size_t>(shown)]; }
    const QStringList& heading() const { return heading_; }
    bool is_detail(int column) const { return table_ && table_->is_detail(column); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// A `column` below 0 is the order in which the rows came.
    void sort(int column, Qt::SortOrder order) override;

  private:
    std::vector<int> sorted(int column, Qt::SortOrder order) const;

    std::unique_ptr<SiteTable> table_;
    Texts texts_;
    QStringList heading_;
    std::vector<int> order_;
};

}  // namespace m47::sites
