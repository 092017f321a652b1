// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSaveFile>

namespace m47 {

/// Puts what was written into the place of the older file. False: it was not written whole, the
/// older file stands as it was, and errorString() says why.
inline bool put_in_place(QSaveFile& file) {
    // What the disk has no room for may show no sooner than at the flush, and the commit alone
    // does not look at that: it would put an empty file into the older one's place.
    return file.flush() && file.commit();
}

/// Puts `bytes` as a file in the place of what stood at `path` before, whole or not at all. Nothing
/// on success, else the reason.
inline QString write_whole_file(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && put_in_place(file);
    return written ? QString() : file.errorString();
}

}  // namespace m47
