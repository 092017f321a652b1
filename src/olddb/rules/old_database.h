// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace m47::olddb {

/// A table of a file of the old engine, its fields under the names they have there. A value is
/// null where the field is unset, else a QString, a qlonglong, a double or a bool.
struct OldTable {
    QString name;
    QStringList fields;
    QList<QVariantList> rows;  ///< in the order of the file, a value for each of `fields`

    bool operator==(const OldTable&) const = default;
};

/// What a file of the old engine holds of this program's tables.
struct OldDatabase {
    int version = 0;  ///< of the Jet engine, 3 or 4
    QList<OldTable> tables;
    /// Other tables, and as "table.field" the fields of a kind that no field of ours has.
    QStringList others;
    /// The kernel held the process that read it: by Landlock, by seccomp or by both.
    bool reader_was_held = false;

    bool operator==(const OldDatabase&) const = default;
};

/// Why a file of the old engine cannot be read.
enum class OldFileFault {
    missing,
    unreadable,  ///< no permission, no regular file, or the reading process does not start
    no_jet,      ///< a file of another kind, or of a later engine
    damaged,     ///< also: reading it takes longer or gives more than any good file does
    foreign,     ///< it holds none of the program's tables
    no_reader,   ///< the part of this program that reads such files is missing; path names it
};

struct OldFileError {
    OldFileFault fault = OldFileFault::damaged;
    QString path;
    /// What was found, in technical words; may be empty.
    QString detail;
};

}  // namespace m47::olddb
