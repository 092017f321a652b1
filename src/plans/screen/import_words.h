// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <span>

#include "plan_file.h"
#include "plan_import.h"

namespace m47::plans {

/// The column that is of use only where the file names its transponders.
inline constexpr int kImportNameColumn = 2;

/// The columns of an import's preview.
std::span<const Bilingual> import_columns();

/// The cells of one row, in the order of the columns.
QStringList import_cells(const ImportCandidate& candidate, const ImportRow& row,
                         const Texts& texts);

/// How many programs come and what else there is to know of the whole file, a line each.
QString import_summary(const ImportFile& file, const ImportPreview& preview, const Texts& texts);

/// How many of the programs that come are in the logger table.
QString lines_summary(const ImportPreview& preview, const Texts& texts);

}  // namespace m47::plans
