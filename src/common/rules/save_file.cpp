// SPDX-License-Identifier: GPL-3.0-or-later
#include "save_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>

namespace m47 {
namespace {

/// True where something else than a plain file stands at `path`. A link that names none is nothing
/// where links are followed.
bool something_else_at(const QByteArray& path, Links links) {
    struct stat about {};
    const auto look = links == Links::followed ? ::stat : ::lstat;
    return look(path.constData(), &about) == 0 && !S_ISREG(about.st_mode);
}

/// The folder in which the file stands: behind a link, that of the file it names.
QString folder_of(const QString& path) {
    const QString file = QFileInfo(path).canonicalFilePath();
    return QFileInfo(file.isEmpty() ? path : file).absolutePath();
}

/// The reason why not, empty where it is on the medium or the file system knows no such thing.
QString sync(int descriptor) {
    while (::fsync(descriptor) != 0) {
        if (errno == EINVAL || errno == ENOTSUP) break;
        if (errno != EINTR) return qt_error_string(errno);
    }
    return {};
}

/// Puts what was written into the place of the older file. What the disk has no room for, or cannot
/// keep, may show no sooner than at the flush or the sync, and the commit alone looks at neither:
/// it would put an empty file into the older one's place.
QString put_in_place(QSaveFile& file, const QString& path) {
    if (!file.flush()) return file.errorString();
    const QString reason = sync(file.handle());
    if (!reason.isEmpty()) {
        file.cancelWriting();
        file.commit();
        return reason;
    }
    return file.commit() ? sync_folder(folder_of(path)) : file.errorString();
}

}  // namespace

QString write_whole_file(const QString& path, const QByteArray& bytes, Links links) {
    if (something_else_at(QFile::encodeName(path), links))
        return QStringLiteral("not a plain file");
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return file.errorString();
    return put_in_place(file, path);
}

QString sync_folder(const QString& folder) {
    const int opened =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    // A folder that may be written but not read.
    if (opened < 0) return {};
    const QString reason = sync(opened);
    ::close(opened);
    return reason;
}

}  // namespace m47
