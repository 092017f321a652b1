// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <optional>

#include "database_error.h"
#include "engine.h"
#include "store_error.h"

namespace m47::sites {

/// What an error of the engine is to the file of sites.
StoreError store_error_of(const db::EngineFault& fault);

/// Why the file at `path` is none that can be worked on, as far as can be told without the engine:
/// also that another program has made it, or a later version of this one. It is only read. Not to
/// be called while a SiteStore of this process is open on it: the system would drop its locks.
std::optional<StoreError> fault_of_site_file(const QString& path);

/// Damage of the tables that every use reads, and a file that is too short. The measurements, of
/// which there may be millions, are checked where they are read. An error of the engine is an
/// EngineFault.
std::optional<StoreError> fault_of_lists(const QSqlDatabase& database, const QString& path);

}  // namespace m47::sites
