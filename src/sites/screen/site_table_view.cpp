// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_table_view.h"

#include <QHeaderView>
#include <QKeyEvent>

#include "tone_delegate.h"

namespace m47::sites {
namespace {

/// Rows that are measured for the width of a column: all of them would take long.
constexpr int kMeasuredRows = 200;
/// No column is wider, in characters, than lets its neighbours be seen.
constexpr int kWidestColumn = 42;

}  // namespace

SiteTableView::SiteTableView(QWidget* parent)
    : QTableView(parent), model_(new SiteTableModel(this)) {
    setModel(model_);
    setItemDelegate(new ToneDelegate(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + fontMetrics().height() / 3);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setResizeContentsPrecision(kMeasuredRows);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    setSortingEnabled(true);
    connect(this, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { Q_EMIT chosen(model_->table_row(index.row())); });
}

void SiteTableView::show_table(std::unique_ptr<SiteTable> table, const Texts& texts) {
    model_->show(std::move(table), texts);
    const QHeaderView* header = horizontalHeader();
    if (header->sortIndicatorSection() >= 0)
        model_->sort(header->sortIndicatorSection(), header->sortIndicatorOrder());
    show_details(details_);
}

void SiteTableView::show_details(bool wanted) {
    details_ = wanted;
    for (int column = 0; column < model_->columnCount(); ++column)
        setColumnHidden(column, !details_ && model_->is_detail(column));
    fit_columns();
}

void SiteTableView::fit_columns() {
    const int widest = fontMetrics().averageCharWidth() * kWidestColumn;
    for (int column = 0; column < model_->columnCount(); ++column) {
        if (isColumnHidden(column)) continue;
        resizeColumnToContents(column);
        if (columnWidth(column) > widest) setColumnWidth(column, widest);
    }
}

ShownTable SiteTableView::shown() const {
    QList<int> columns;
    for (int k = 0; k < model_->columnCount(); ++k)
        if (const int column = horizontalHeader()->logicalIndex(k); !isColumnHidden(column))
            columns += column;
    ShownTable shown;
    for (const int column : columns) shown.heading += model_->heading()[column];
    for (int row = 0; row < model_->rowCount(); ++row) {
        QStringList cells;
        for (const int column : columns)
            cells += model_->index(row, column).data(Qt::DisplayRole).toString();
        shown.rows += cells;
    }
    return shown;
}

int SiteTableView::current_row() const {
    const QModelIndex current = currentIndex();
    return current.isValid() ? model_->table_row(current.row()) : -1;
}

void SiteTableView::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && current_row() >= 0) {
        Q_EMIT chosen(current_row());
        return;
    }
    QTableView::keyPressEvent(event);
}

}  // namespace m47::sites
