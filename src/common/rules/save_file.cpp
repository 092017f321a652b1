// SPDX-License-Identifier: GPL-3.0-or-later
#include "save_file.h"

#include <QFileInfo>
#include <QSaveFile>

#include "medium.h"

namespace m47 {
namespace {

/// The folder in which the file stands: behind a link, that of the file it names.
QString folder_of(const QString& path) {
    const QString file = QFileInfo(path).canonicalFilePath();
    return QFileInfo(file.isEmpty() ? path : file).absolutePath();
}

QString reason_of(const std::error_code& error) {
    return error ? qt_error_string(error.value()) : QString();
}

/// Puts what was written into the place of the older file. What the disk has no room for, or cannot
/// keep, may show no sooner than at the flush or the sync, and the commit alone looks at neither:
/// it would put an empty file into the older one's place.
QString put_in_place(QSaveFile& file, const QString& path) {
    if (!file.flush()) return file.errorString();
    const QString reason = reason_of(platform::sync_file(file.handle()));
    if (!reason.isEmpty()) {
        file.cancelWriting();
        file.commit();
        return reason;
    }
    return file.commit() ? reason_of(platform::sync_folder(folder_of(path))) : file.errorString();
}

}  // namespace

QString write_whole_file(const QString& path, const QByteArray& bytes, platform::Links links) {
    if (platform::something_else_at(path, links)) return QStringLiteral("not a plain file");
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return file.errorString();
    return put_in_place(file, path);
}

}  // namespace m47
