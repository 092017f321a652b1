// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSqlDatabase>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

#include "own_file_error.h"

namespace m47::db {

/// What tells a file that the program made for itself from other files of the engine.
struct OwnFileMark {
    std::uint32_t application;  ///< PRAGMA application_id
    std::uint32_t version;      ///< the newest PRAGMA user_version that this program works on
};

/// Why the file at `path` is none that can be worked on, as far as can be told without the engine:
/// also that another program has made it, or a later version of this one. It is only read. Not to
/// be called while this process is at work on it: the system would drop its locks.
std::optional<OwnFileError> fault_of_own_file(const QString& path, const OwnFileMark& mark);

/// Sees to a file at `path`: one that is there is looked at and left alone, where there is none it
/// is made whole, by `fill`. What speaks against using it otherwise.
std::optional<OwnFileError> make_own_file(
    const QString& path, const OwnFileMark& mark,
    const std::function<void(const QSqlDatabase& database)>& fill);

}  // namespace m47::db
