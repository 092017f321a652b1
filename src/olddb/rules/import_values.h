// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariant>

#include "schema.h"

namespace m47::olddb {

/// A value on its way into a field of ours.
struct ImportedValue {
    enum class Verdict {
        as_it_was,
        corrected,
        doubtful,  ///< left as it was, but the program will not understand it
    };
    QVariant value;
    Verdict verdict = Verdict::as_it_was;
};

/// `old`, read from a file of the old engine, as `field` keeps it. An unset value stays unset and a
/// text in a field for texts stays as it is, but for program numbers and logger positions, which
/// are looked up by their texts "007" and "03".
ImportedValue value_for(const db::Field& field, const QVariant& old);

/// A value for a reader of the report.
QString shown_value(const QVariant& value);

}  // namespace m47::olddb
