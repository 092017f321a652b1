// SPDX-License-Identifier: GPL-3.0-or-later
#include "cells_model.h"

#include "tooltips.h"

namespace m47::sites {

int CellsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int CellsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(heading_.size());
}

QVariant CellsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
    const QString text = cells_(index.row()).value(index.column());
    return role == Qt::ToolTipRole ? plain_tooltip(text) : text;
}

QVariant CellsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return heading_.value(section);
}

}  // namespace m47::sites
