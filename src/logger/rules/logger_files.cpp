// SPDX-License-Identifier: GPL-3.0-or-later
#include "logger_files.h"

#include <QFile>
#include <QFileInfo>

#include "database.h"
#include "save_file.h"

namespace m47 {
namespace {

constexpr qint64 kLongestFile = qint64{64} * 1024 * 1024;
constexpr char kLineEnd[] = "\r\n";

/// A name that stands for something else than a plain file cannot be meant, and a pipe would hold
/// the program up for ever.
bool plain_file_or_none(const QString& path) {
    const QFileInfo info(path);
    return !info.exists() || info.isFile();
}

}  // namespace

NameFault temporary_name_fault(const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty()) return NameFault::empty;
    const bool leaves = name.contains(u'/') || name.contains(u'\\') ||
                        name.contains(QLatin1String("..")) || trimmed == QLatin1String(".");
    // On a disk that knows no case the two would be one file.
    const bool database = trimmed.startsWith(QLatin1String(kDatabaseFile), Qt::CaseInsensitive);
    return leaves || database ? NameFault::forbidden : NameFault::none;
}

QByteArray with_line_ends(const QByteArray& content) {
    QByteArray text;
    text.reserve(content.size() + 2);
    for (qsizetype at = 0; at < content.size(); ++at) {
        const char character = content[at];
        if (character != '\r' && character != '\n') {
            text += character;
            continue;
        }
        text += kLineEnd;
        if (character == '\r' && at + 1 < content.size() && content[at + 1] == '\n') ++at;
    }
    if (!content.isEmpty() && !content.endsWith('\r') && !content.endsWith('\n')) text += kLineEnd;
    return text;
}

bool read_file(const QString& path, QByteArray& content) {
    QFile file(path);
    if (!plain_file_or_none(path) || !file.open(QIODevice::ReadOnly)) return false;
    if (file.size() > kLongestFile) return false;
    content = file.readAll();
    return file.error() == QFileDevice::NoError;
}

bool write_file(const QString& path, const QByteArray& content) {
    if (!plain_file_or_none(path)) return false;
    QSaveFile file(path);
    // Where no file can be made beside it, the file itself is written.
    file.setDirectWriteFallback(true);
    const QByteArray bytes = content + kLineEnd;
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
           put_in_place(file);
}

}  // namespace m47
