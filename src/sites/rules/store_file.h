// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <optional>

#include "store_error.h"

namespace m47::sites {

/// Sees to a file of sites at `path`: one that is there is looked at and left alone, where there is
/// none it is made whole. What speaks against using it otherwise.
std::optional<StoreError> make_site_file(const QString& path);

/// Sets `database`, just opened on the file, to work as all of them do, checks its lists and brings
/// its tables up to date. An error of the engine is an EngineFault.
std::optional<StoreError> prepare_site_file(const QSqlDatabase& database, const QString& path);

}  // namespace m47::sites
