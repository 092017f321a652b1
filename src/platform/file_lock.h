// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::platform {

/// Keeps other starts of this program away from a file, or from a folder's files, for as long as it
/// lives. Whoever has it is waited for, 2 s at most: it is held for a few calls to the disk. Where
/// the file system knows no locks nobody is kept away.
class FileLock {
  public:
    /// Of the open file `descriptor`, which may be closed before where a copy of it stays open.
    explicit FileLock(int descriptor);
    /// Of the folder `path`.
    explicit FileLock(const QString& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// True where another program still had it after 2 s.
    bool refused() const { return refused_; }

  private:
    void take(int descriptor);

    int folder_ = -1;  ///< of the one that opened it itself
    bool refused_ = false;
};

}  // namespace m47::platform
