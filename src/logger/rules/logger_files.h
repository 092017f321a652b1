// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "plain_file.h"

namespace m47::logger {

/// What is wrong with a name for the temporary download file.
enum class NameFault {
    none,
    empty,      ///< nothing but blanks
    forbidden,  ///< would leave the folder, or is the database's
};

/// Looks at `name` before anything is sent to the meter: the file must lie in the program's folder
/// and leave the database (and the files beside it that begin with its name) alone.
NameFault temporary_name_fault(const QString& name);

/// `content` with every line ended by CR LF. A line ends at CR, LF or CR LF; a last line without
/// its end counts as one.
QByteArray with_line_ends(const QByteArray& content);

/// The bytes of a plain file into `content`. False when it cannot be read, is no plain file (a pipe
/// would be waited for) or is longer than 64 MiB, which no logger holds; what could be read before
/// an error is in `content` all the same.
bool read_file(const QString& path, QByteArray& content);

/// Creates or overwrites a file with `content` and one line end, whole or not at all. False when it
/// could not be written: an older file stands as it was then. A name that the user chose may be
/// that of a link; the program's own are not followed.
bool write_file(const QString& path, const QByteArray& content, platform::Links links);

}  // namespace m47::logger
