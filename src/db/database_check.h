// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>

#include "database.h"
#include "engine.h"

namespace m47::db {

/// What is wrong with the file at `path` as far as can be told without the engine: whether it is
/// there, may be read and written, and is a file of the engine in use. Nothing where all is well.
///
/// The system drops every lock this process holds on a file as soon as it closes any handle of it:
/// not to be called while a transaction of this process runs on the same file.
std::optional<DatabaseError> fault_of_file(const QString& path);

/// The same for what the engine finds: damage, missing tables and fields. An error of the engine is
/// an EngineFault.
std::optional<DatabaseError> fault_of_content(const QSqlDatabase& database, const QString& path);

/// Damage that the engine's check finds in `tables`, with their indices, or in all of the file
/// where none are named, and a file that is shorter than its pages. An error of the engine is an
/// EngineFault.
std::optional<DatabaseError> damage_of(const QSqlDatabase& database, const QString& path,
                                       const QStringList& tables = {});

/// Begins a write and undoes it; one that does not pass is an EngineFault, but for a full disk.
void probe_write(const QSqlDatabase& database);

/// What a finding of the engine's check stands for: damage, unless it names the error for which a
/// page could not even be read, such as that of a failing disk.
DatabaseFault fault_of_finding(const QString& finding);

/// Which fault of the database an error of the engine stands for. Only a file that the engine calls
/// corrupt or no database counts as damaged.
DatabaseError error_of(const EngineFault& fault);

}  // namespace m47::db
