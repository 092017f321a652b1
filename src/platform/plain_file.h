// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace m47::platform {

/// Whether a symbolic link in a file's place stands for the file that it names. Where the program
/// writes unasked, nobody meant that file.
enum class Links { followed, refused };

/// True where something else than a plain file stands at `path`. A link that names none is nothing
/// where links are followed.
bool something_else_at(const QString& path, Links links);

/// Why a file is not read.
enum class FileFault {
    none,
    missing,
    unreadable,  ///< no permission, or an error while reading
    not_plain,   ///< a folder, a pipe, a device, or a link that is not followed
    too_long,
};

/// A plain file opened for reading. Nothing is waited for, not even a pipe, and a file that is too
/// long is not opened.
class PlainFile {
  public:
    /// Opens `path`, a file of at most `longest` bytes.
    PlainFile(const QString& path, qint64 longest, Links links = Links::followed);

    FileFault fault() const { return fault_; }
    /// What the system says to a file that is missing or unreadable.
    const QString& reason() const { return reason_; }
    /// Open where there is no fault.
    QFile& file() { return file_; }

  private:
    FileFault fault_of_place(int descriptor, qint64 longest);

    QFile file_;
    FileFault fault_ = FileFault::none;
    QString reason_;
};

/// What a file held.
struct FileReading {
    QByteArray bytes;  ///< after an error what came before it
    FileFault fault = FileFault::none;
    QString reason;  ///< of the system, for a file that is missing or unreadable
};

/// Reads the plain file `path` whole, under the same conditions.
FileReading read_plain_file(const QString& path, qint64 longest, Links links = Links::followed);

}  // namespace m47::platform
