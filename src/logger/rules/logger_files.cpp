// SPDX-License-Identifier: GPL-3.0-or-later
#include "logger_files.h"

#include "database.h"
#include "save_file.h"

namespace m47::logger {
namespace {

constexpr qint64 kLongestFile = qint64{64} * 1024 * 1024;
constexpr char kLineEnd[] = "\r\n";

}  // namespace

NameFault temporary_name_fault(const QString& name) {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty()) return NameFault::empty;
    const bool leaves = name.contains(u'/') || name.contains(u'\\') ||
                        name.contains(QLatin1String("..")) || trimmed == QLatin1String(".");
    // On a disk that knows no case the two would be one file.
    const bool database = trimmed.startsWith(QLatin1String(db::kDatabaseFile), Qt::CaseInsensitive);
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
    const platform::FileReading reading = platform::read_plain_file(path, kLongestFile);
    content = reading.bytes;
    return reading.fault == platform::FileFault::none;
}

bool write_file(const QString& path, const QByteArray& content, platform::Links links) {
    return write_whole_file(path, content + kLineEnd, links).isEmpty();
}

}  // namespace m47::logger
