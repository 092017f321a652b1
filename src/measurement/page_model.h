// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>

#include "page_store.h"

namespace m47::measurement {

/// The measurement page `measgrid`: model row 0 is the first measurement, the last row is always
/// the empty one that the next measurement fills; the header row is the horizontal header. Cells
/// can be selected and copied, not edited.
class PageModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// Writes the cells to the last row, as PageStore::append takes them, and adds a new empty one
    /// below it.
    void append(const QStringList& cells);

    /// The same of a row whose measurement is known.
    void append(const QStringList& cells, const Measurement& measurement);

    /// Takes `store` as the page's measurements in place of all it held, in one reset.
    void replace(PageStore store);

    /// Removes every measurement; the header and one empty row stay.
    void clear();

    /// How many rows are measurements: all but the empty last one.
    int measurements() const { return store_.rows(); }

    /// The eleven cells of measurement `row` as they stand on the page.
    QStringList cells(int row) const;

    /// The measurements; row k of it is model row k.
    const PageStore& store() const { return store_; }

  private:
    PageStore store_;
};

/// The page as it is printed: two empty lines, then the header and every row, the empty last one
/// included, each as a TAB and its cells joined by TAB.
QStringList print_lines(const PageModel& page);

}  // namespace m47::measurement
