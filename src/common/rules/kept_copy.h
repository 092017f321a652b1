// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include "file_lock.h"

namespace m47 {

/// What is kept of the meter before it is changed there: the names of its files are `stem`, a date
/// and `suffix`, "logger-20261121-100000-000.txt".
struct CopyKind {
    const char* stem;
    const char* suffix;
};

inline constexpr CopyKind kTableCopy{"logger", "txt"};  ///< the table of the logger
inline constexpr CopyKind kLogCopy{"logged", "dwl"};    ///< what the logger has recorded
inline constexpr CopyKind kSlotCopy{"slots", "s19"};    ///< the satellites of the meter

/// Keeps `bytes` as a file dated `now` in the folder `backup` of `base_dir`, and of all files of
/// its kind the last 30. The path of the file. What cannot be kept is a Fault.
QString keep_copy(const QString& base_dir, const CopyKind& kind, const QByteArray& bytes,
                  const QDateTime& now);

/// A folder's files are this program's alone as long as it lives; a Fault where another program is
/// at work there.
class OwnFolder {
  public:
    explicit OwnFolder(const QString& path);

  private:
    platform::FileLock lock_;
};

}  // namespace m47
