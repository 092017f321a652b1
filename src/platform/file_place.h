// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <system_error>

namespace m47::platform {

/// True where both paths lead to one file, false where to two; nothing where one leads to none.
std::optional<bool> same_file(const QString& one, const QString& other);

/// What tells the file at `path` from any other one of its disk as long as it is open; nothing
/// where there is none.
std::optional<quint64> file_number(const QString& path);

/// True where this user, or nobody, may make a file in `folder`.
bool refuses_new_files(const QString& folder);

/// What keeps `bytes` from being written into a new file in `folder`; tried with one of its own,
/// which is gone again.
std::error_code fault_of_writing_in(const QString& folder, const QByteArray& bytes);

/// Makes an empty file at `path`; std::errc::file_exists where something is there already.
std::error_code make_new_file(const QString& path);

/// Gives the file `path` the name `place` in one step; std::errc::file_exists where something has
/// that name already. The old name may stay beside the new one.
std::error_code put_in_free_place(const QString& path, const QString& place);

}  // namespace m47::platform
