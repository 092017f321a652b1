// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <functional>

namespace m47::sites {

/// A table of texts that are made as they come into sight: a log has hundreds of thousands of
/// lines.
class CellsModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    /// `cells` gives the row of a number, from 0 to `rows` - 1.
    CellsModel(QStringList heading, int rows, std::function<QStringList(int row)> cells,
               QObject* parent)
        : QAbstractTableModel(parent),
          heading_(std::move(heading)),
          rows_(rows),
          cells_(std::move(cells)) {}

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

  private:
    QStringList heading_;
    int rows_;
    std::function<QStringList(int row)> cells_;
};

}  // namespace m47::sites
