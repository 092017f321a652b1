// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QVariant>
#include <optional>
#include <vector>

#include "recordset.h"

namespace m47::db {

/// A row as the file holds it: a value for each field of its table, in their order, unset ones
/// too.
using StoredRow = std::vector<QVariant>;

/// The row `row` of `table`; nothing where there is none.
std::optional<StoredRow> read_row(const QSqlDatabase& database, const QString& table, Bookmark row);

/// Makes the row `row` of `table` what `content` says, under the same bookmark even where it was
/// deleted; without a content it is deleted. A Fault leaves it as it was.
void write_row(const QSqlDatabase& database, const QString& table, Bookmark row,
               const std::optional<StoredRow>& content);

}  // namespace m47::db
