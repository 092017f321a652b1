// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_rows.h"

#include <QWidget>

namespace m47::realtime {
namespace {

/// Between two rows; the grids have none of their own, as they leave it out beside an empty row.
constexpr int kBetweenRows = 2;

int row_of(const QGridLayout& grid, int item) {
    int row = 0, column = 0, rows = 0, columns = 0;
    grid.getItemPosition(item, &row, &column, &rows, &columns);
    return row;
}

/// The height that the items of the rows `from` to `to` need.
int height_of_rows(const QGridLayout& grid, int from, int to) {
    int height = 0;
    for (int k = 0; k < grid.count(); ++k) {
        const int row = row_of(grid, k);
        // Not the item's, which is nothing while the frame has not been shown yet.
        const QWidget* control = grid.itemAt(k)->widget();
        if (control && row >= from && row <= to)
            height = qMax(height, control->sizeHint().height());
    }
    return height;
}

}  // namespace

void level_rows(QGridLayout& measures, const QGroupBox& alarms, QGridLayout& limits) {
    const int last = measures.rowCount() - 1;
    const int height = kBetweenRows + qMax(height_of_rows(measures, 1, last),
                                           height_of_rows(limits, 1, limits.rowCount() - 1));
    for (int row = 1; row <= last; ++row) {
        measures.setRowMinimumHeight(row, height);
        if (row < limits.rowCount()) limits.setRowMinimumHeight(row, height);
    }
    const int captions = height_of_rows(limits, 0, 0);
    limits.setRowMinimumHeight(0, captions);
    const int above = alarms.contentsMargins().top() + limits.contentsMargins().top();
    measures.setRowMinimumHeight(0, above + captions);
}

}  // namespace m47::realtime
