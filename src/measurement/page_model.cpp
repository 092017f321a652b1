// SPDX-License-Identifier: GPL-3.0-or-later
#include "page_model.h"

#include <utility>

namespace m47::measurement {
namespace {

constexpr std::array<const char*, PageStore::kColumns> kHeader{
    "DATE", "TIME", "FR", "OSC", "LEV", "BER", "PVBER", "CFO", "MER", "RU", "STATUS"};

QString text_of(std::string_view bytes) {
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

}  // namespace

int PageModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : measurements() + 1;
}

int PageModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : PageStore::kColumns;
}

QVariant PageModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid()) return {};
    if (index.row() == measurements()) return QString();
    return text_of(store_.cell(index.row(), index.column()));
}

QVariant PageModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    if (section < 0 || section >= PageStore::kColumns) return {};
    return QString::fromLatin1(kHeader[static_cast<std::size_t>(section)]);
}

void PageModel::append(const QStringList& cells) {
    // To a view the measurement comes in before the empty row, which moves down by one.
    const int row = measurements();
    beginInsertRows({}, row, row);
    store_.append(cells);
    endInsertRows();
}

void PageModel::append(const QStringList& cells, const Measurement& measurement) {
    const int row = measurements();
    beginInsertRows({}, row, row);
    store_.append(cells, measurement);
    endInsertRows();
}

void PageModel::replace(PageStore store) {
    beginResetModel();
    store_ = std::move(store);
    endResetModel();
}

void PageModel::clear() {
    beginResetModel();
    store_.clear();
    endResetModel();
}

QStringList PageModel::cells(int row) const {
    return text_of(store_.line(row)).split(u'\t');
}

QStringList print_lines(const PageModel& page) {
    QStringList lines(2);
    lines.reserve(page.rowCount() + 3);
    QString header;
    for (int column = 0; column < PageStore::kColumns; ++column)
        header += u'\t' + page.headerData(column, Qt::Horizontal).toString();
    lines << header;
    for (int row = 0; row < page.measurements(); ++row)
        lines << u'\t' + text_of(page.store().line(row));
    lines << QString(PageStore::kColumns, u'\t');
    return lines;
}

}  // namespace m47::measurement
