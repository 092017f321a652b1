// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

namespace m47::olddb {

/// A field of a table to be written, of the old engine's kinds.
enum class JetKind : unsigned char {
    boolean = 1,
    byte = 2,
    integer = 3,
    long_integer = 4,
    single = 6,
    number = 7,
    text = 10,
    ole = 11,
    memo = 12,
};

struct JetField {
    QString name;
    JetKind kind;
};

struct JetRows {
    QString name;
    QList<JetField> fields;
    QList<QVariantList> rows;  ///< a null value leaves the field unset
};

/// A small file of the old engine, version 3 or 4, with these tables: no index, no second page of
/// rows, no row of 256 bytes or more. Long texts lie in a chain of pages where they are longer than
/// a page, on one page where they are longer than 30 characters, in the row else. Jet 4 texts of an
/// even number of characters are written in runs, compressed where they can be, the others as
/// UTF-16, Jet 3 texts in Windows-1252. `header` is the first page of a real file, whose scrambled
/// part is kept.
QByteArray jet_file(int version, const QByteArray& header, const QList<JetRows>& tables);

}  // namespace m47::olddb
