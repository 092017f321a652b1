// SPDX-License-Identifier: GPL-3.0-or-later
#include "save_file.h"

#include <sys/stat.h>

#include <QSaveFile>

namespace m47 {
namespace {

/// True where something else than a plain file stands at `path`. A link that names none is nothing
/// where links are followed.
bool something_else_at(const QByteArray& path, Links links) {
    struct stat about {};
    const auto look = links == Links::followed ? ::stat : ::lstat;
    return look(path.constData(), &about) == 0 && !S_ISREG(about.st_mode);
}

/// Puts what was written into the place of the older file. What the disk has no room for may show
/// no sooner than at the flush, and the commit alone does not look at that: it would put an empty
/// file into the older one's place.
bool put_in_place(QSaveFile& file) {
    return file.flush() && file.commit();
}

}  // namespace

QString write_whole_file(const QString& path, const QByteArray& bytes, Links links) {
    if (something_else_at(QFile::encodeName(path), links))
        return QStringLiteral("not a plain file");
    QSaveFile file(path);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && put_in_place(file);
    return written ? QString() : file.errorString();
}

}  // namespace m47
