// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_table_model.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tone_delegate.h"
#include "tooltips.h"

namespace m47::sites {
namespace {

/// Numbers before texts, and what has neither last, whichever way.
bool comes_before(const TableCell& one, const TableCell& other, bool ascending) {
    const bool number = !std::isnan(one.number);
    const bool other_number = !std::isnan(other.number);
    if (number != other_number) return number;
    if (number) return ascending ? one.number < other.number : one.number > other.number;
    if (one.text.isEmpty() != other.text.isEmpty()) return other.text.isEmpty();
    const int compared = QString::localeAwareCompare(one.text, other.text);
    return ascending ? compared < 0 : compared > 0;
}

}  // namespace

void SiteTableModel::show(std::unique_ptr<SiteTable> table, const Texts& texts) {
    beginResetModel();
    table_ = std::move(table);
    texts_ = texts;
    heading_ = table_ ? table_->heading(texts_) : QStringList();
    order_.resize(table_ ? static_cast<std::size_t>(table_->rows()) : 0);
    std::iota(order_.begin(), order_.end(), 0);
    endResetModel();
}

int SiteTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(order_.size());
}

int SiteTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(heading_.size());
}

QVariant SiteTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(
            Qt::AlignVCenter |
            (table_->is_number(index.column()) ? Qt::AlignRight : Qt::AlignLeft));
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != kToneRole) return {};
    const TableCell cell = table_->cell(table_row(index.row()), index.column(), texts_);
    if (role == kToneRole) return static_cast<int>(cell.tone);
    if (role == Qt::DisplayRole) return cell.text;
    // A text may be longer than its column.
    return table_->is_number(index.column()) ? QVariant() : QVariant(plain_tooltip(cell.text));
}

QVariant SiteTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::ToolTipRole) return heading_.value(section);
    // As much room as its cells have.
    if (role == Qt::DisplayRole) return QChar::Nbsp + heading_.value(section) + QChar::Nbsp;
    if (role == Qt::TextAlignmentRole && table_)
        return static_cast<int>(Qt::AlignVCenter |
                                (table_->is_number(section) ? Qt::AlignRight : Qt::AlignLeft));
    return {};
}

std::vector<int> SiteTableModel::sorted(int column, Qt::SortOrder order) const {
    std::vector<int> rows(order_.size());
    std::iota(rows.begin(), rows.end(), 0);
    if (column < 0 || column >= heading_.size()) return rows;
    std::vector<TableCell> cells;
    cells.reserve(rows.size());
    for (const int row : rows) cells.push_back(table_->cell(row, column, texts_));
    std::ranges::stable_sort(rows, [&](int one, int other) {
        return comes_before(cells[static_cast<std::size_t>(one)],
                            cells[static_cast<std::size_t>(other)], order == Qt::AscendingOrder);
    });
    return rows;
}

void SiteTableModel::sort(int column, Qt::SortOrder order) {
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const std::vector<int> before = std::exchange(order_, sorted(column, order));
    std::vector<int> places(order_.size());
    for (std::size_t k = 0; k < order_.size(); ++k)
        places[static_cast<std::size_t>(order_[k])] = static_cast<int>(k);
    QModelIndexList now;
    const QModelIndexList then = persistentIndexList();
    for (const QModelIndex& each : then) {
        const int row = before[static_cast<std::size_t>(each.row())];
        now += index(places[static_cast<std::size_t>(row)], each.column());
    }
    changePersistentIndexList(then, now);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

}  // namespace m47::sites
