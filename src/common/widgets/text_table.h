// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QTableWidget>
#include <span>

#include "texts.h"

namespace m47 {

/// A table of texts that are read and not changed, under `columns` in the language in use; the last
/// column takes what is left of the width. `name` is its object name.
QTableWidget* text_table(const char* name, std::span<const Bilingual> columns,
                         const QList<QStringList>& rows, const Texts& texts);

}  // namespace m47
