// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_table_view.h"

#include <QHeaderView>
#include <QScopedValueRollback>
#include <algorithm>

namespace m47::plans {
namespace {

/// Widths of columns, in pixels, that somebody can have wanted.
constexpr int kNarrowest = 10;
constexpr int kWidest = 10000;

constexpr Bilingual kTableName{"Programs of the plan", "Programmi del piano"};

}  // namespace

PlanTableView::PlanTableView(const Texts& texts) : table_(texts) {
    setObjectName(QStringLiteral("plan_table"));
    setAccessibleName(texts.pick(kTableName));
    order_.setSourceModel(&table_);
    order_.setSortRole(PlanTable::kSortRole);
    setModel(&order_);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsMovable(true);
    // The third click on a heading shows the order of the plan again.
    horizontalHeader()->setSortIndicatorClearable(true);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    setSortingEnabled(true);
    const auto changed = [this] { columns_are_users_ |= !fitting_; };
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, changed);
    connect(horizontalHeader(), &QHeaderView::sectionMoved, this, changed);
    table_.on_entry = [this](int row, const programme::ProgramField::Member& member,
                             const QString& text) { take_entry(row, member, text); };
}

/// Room for what is looked at first; the limits are reached by scrolling.
QSize PlanTableView::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 60, fontMetrics().height() * 12};
}

void PlanTableView::follow(const PlanSets& sets, const std::vector<db::Bookmark>& changed) {
    const QScopedValueRollback<bool> quiet(following_, true);
    table_.follow(sets, changed);
    fit_columns();
}

/// Once, as wide as a program needs; after that the widths are the user's.
void PlanTableView::fit_columns() {
    const QScopedValueRollback<bool> fitting(fitting_, true);
    setColumnHidden(PlanTable::kName, !table_.has_names());
    if (fitted_ || table_.rowCount() == 0) return;
    fitted_ = true;
    resizeColumnsToContents();
    const int number = fontMetrics().horizontalAdvance(QStringLiteral("00000.0")) + 12;
    for (const int column : {PlanTable::kFrequency, PlanTable::kSymbolRate})
        setColumnWidth(column, std::max(columnWidth(column), number));
    const int band = fontMetrics().horizontalAdvance(QStringLiteral("bassa 10600")) + 12;
    setColumnWidth(PlanTable::kBand, std::max(columnWidth(PlanTable::kBand), band));
}

/// "2:57 0:40 …": each column and its width from left to right.
QString PlanTableView::columns() const {
    if (!columns_are_users_) return {};
    const QHeaderView* header = horizontalHeader();
    QStringList left_to_right;
    for (int place = 0; place < header->count(); ++place) {
        const int column = header->logicalIndex(place);
        left_to_right += QStringLiteral("%1:%2").arg(column).arg(header->sectionSize(column));
    }
    return left_to_right.join(u' ');
}

void PlanTableView::set_columns(const QString& columns) {
    std::vector<int> order, widths;
    for (const QString& entry : columns.split(u' ')) {
        order.push_back(entry.section(u':', 0, 0).toInt());
        widths.push_back(entry.section(u':', 1).toInt());
    }
    std::vector<int> sorted = order;
    std::ranges::sort(sorted);
    QHeaderView* header = horizontalHeader();
    bool whole = static_cast<int>(order.size()) == header->count();
    for (std::size_t k = 0; whole && k < order.size(); ++k)
        whole = sorted[k] == static_cast<int>(k) && widths[k] >= 0 && widths[k] <= kWidest;
    if (!whole) return;
    const QScopedValueRollback<bool> fitting(fitting_, true);
    fitted_ = columns_are_users_ = true;
    for (std::size_t k = 0; k < order.size(); ++k) {
        header->moveSection(header->visualIndex(order[k]), static_cast<int>(k));
        // A column that was hidden had none.
        if (widths[k] > 0) header->resizeSection(order[k], std::max(widths[k], kNarrowest));
    }
}

void PlanTableView::show_current(std::optional<db::Bookmark> row) {
    if (row != current_ || !selectionModel()->hasSelection()) show_current_again(row);
}

void PlanTableView::show_current_again(std::optional<db::Bookmark> row) {
    current_ = row;
    const QScopedValueRollback<bool> quiet(following_, true);
    const int place = row ? table_.place_of(*row) : -1;
    if (place < 0) return clearSelection();
    const QModelIndex shown = order_.mapFromSource(table_.index(place, PlanTable::kNumber));
    const bool among_others = selectionModel()->isRowSelected(shown.row(), {}) &&
                              selectionModel()->selectedRows().size() > 1;
    if (among_others) return;
    const QModelIndex current = shown.siblingAtColumn(std::max(0, currentIndex().column()));
    selectionModel()->setCurrentIndex(
        current, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(shown);
}

std::vector<PlanRow> PlanTableView::selected() const {
    std::vector<int> places;
    for (const QModelIndex& index : selectionModel()->selectedRows()) places.push_back(index.row());
    std::ranges::sort(places);
    std::vector<PlanRow> rows;
    rows.reserve(places.size());
    for (const int place : places)
        rows.push_back(table_.program(order_.mapToSource(order_.index(place, 0)).row()));
    return rows;
}

std::vector<db::Bookmark> PlanTableView::shown_order() const {
    std::vector<db::Bookmark> rows;
    for (int place = 0; place < order_.rowCount(); ++place)
        rows.push_back(table_.program(order_.mapToSource(order_.index(place, 0)).row()).row);
    return rows;
}

void PlanTableView::select(const std::vector<db::Bookmark>& rows) {
    const QScopedValueRollback<bool> quiet(following_, true);
    QItemSelection selection;
    for (const db::Bookmark row : rows) {
        const int place = table_.place_of(row);
        if (place < 0) continue;
        const QModelIndex shown = order_.mapFromSource(table_.index(place, 0));
        selection.select(shown, shown);
    }
    selectionModel()->select(selection,
                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

bool PlanTableView::shows_plan_order() const {
    return order_.sortColumn() < 0;
}

void PlanTableView::show_plan_order() {
    sortByColumn(-1, Qt::AscendingOrder);
}

void PlanTableView::selectionChanged(const QItemSelection& selected,
                                     const QItemSelection& deselected) {
    QTableView::selectionChanged(selected, deselected);
    if (following_) return;
    const std::vector<PlanRow> rows = this->selected();
    if (rows.size() == 1) Q_EMIT recalled(rows.front().row);
}

void PlanTableView::select_rows_of(const std::vector<PlanRow>& rows) {
    std::vector<db::Bookmark> bookmarks;
    bookmarks.reserve(rows.size());
    for (const PlanRow& row : rows) bookmarks.push_back(row.row);
    select(bookmarks);
}

/// An entry in one of several selected rows is meant for all of them, and they stay selected for
/// the next one. It is told once the cell is closed: what follows may show a box.
void PlanTableView::take_entry(int row, const programme::ProgramField::Member& member,
                               const QString& text) {
    std::vector<PlanRow> rows = selected();
    const PlanRow& entered_in = table_.program(row);
    if (std::ranges::find(rows, entered_in) == rows.end()) rows = {entered_in};
    // The click that ends in a tick selects its row alone, which is no recall then.
    following_ = rows.size() > 1;
    const auto tell = [this, rows, member, text] {
        if (rows.size() > 1) select_rows_of(rows);
        following_ = false;
        Q_EMIT entered(rows, member, text);
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

}  // namespace m47::plans
