// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <system_error>

namespace m47::platform {

// Each writes out to the medium and tells why it could not. A file system that knows no such thing
// has no more to give, which is no error.

/// The open file `descriptor`.
std::error_code sync_file(int descriptor);

/// What the open file `descriptor` holds and how long it is, but not when it was changed.
std::error_code sync_content(int descriptor);

/// The file at `path`.
std::error_code sync_file_at(const QString& path);

/// The names in `folder`. One that may be written but not read is left to the system.
std::error_code sync_folder(const QString& folder);

/// True where `error` says that there is no room left, on the medium or of what this user may have.
bool is_full(const std::error_code& error);

}  // namespace m47::platform
