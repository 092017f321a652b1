// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "old_database.h"

namespace m47::olddb {

/// The only argument that makes this program a process that reads the file of the old engine on its
/// stdin, hands over what it found on stdout and can do nothing else. Not for users.
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

/// The reading process. It takes the limits of the system for its own time and memory and gives up
/// whatever else the kernel lets it before it looks at the first byte (confinement.h). Does not
/// return.
[[noreturn]] int run_old_reader();

}  // namespace m47::olddb
