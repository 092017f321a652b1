// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "old_database.h"

namespace m47 {

/// The first argument that makes this program a process that only reads a file of the old engine,
/// named by the second, and hands over what it found on stdout. Not for users.
inline constexpr const char* kReadOldDatabase = "--read-old-database";

/// What a reading process may take before it is ended.
struct OldReaderLimits {
    int milliseconds = 30'000;
    qint64 bytes = 256'000'000;  ///< handed over
};

/// Reads the file of the old engine at `path`, whole or not at all: nothing with `error` filled
/// where it cannot be read. The file is not changed. The library for such files can crash or run
/// forever on a damaged one, so that it works in a process of its own. `idle` is called about every
/// 20 ms meanwhile and may be empty.
std::optional<OldDatabase> read_old_database(const QString& path, OldFileError& error,
                                             const std::function<void()>& idle = {},
                                             const OldReaderLimits& limits = {});

/// The reading process: what follows kReadOldDatabase on its command line. It takes the limits of
/// the system for its own time, memory and files. Returns the exit status.
int run_old_reader(const char* path);

}  // namespace m47
