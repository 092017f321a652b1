// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "program_record.h"

namespace m47::plans {

/// How an upload deals with what the meter holds already.
enum UploadMode {
    kAppend = 0,   ///< leaves it
    kDisable = 1,  ///< disables the active lines of the logger table
    kReplace = 2,  ///< deletes all programs and the logger table
};

/// The lines of `text`, which end at CR, LF or CR LF; what follows the last end counts where it is
/// not empty.
QStringList table_lines(const QString& text);

// A line of the meter's logger table: two digits each, the line's number at characters 1-2, its
// program at 4-5, its state (not 0: active) at 7-8. What is missing is empty.
QString table_line_number(const QString& line);
QString table_line_program(const QString& line);
QString table_line_state(const QString& line);
bool table_line_active(const QString& line);

/// A line of the logger table as it should be and as the meter says it is, each as program and
/// state ("07 01"); empty where there is none.
struct TableComparison {
    QString line;
    QString planned;
    QString found;
    /// False for a line that the upload did not touch and nobody knew before.
    bool judged = true;

    /// A line that is not active is as good as none.
    bool matches() const;
};

/// True for a program and state ("07 01") that make the meter log.
bool table_entry_active(const QString& entry);

/// What a look at the logger table after an upload gave.
struct TableCheck {
    std::vector<TableComparison> rows;
    UploadMode mode = kAppend;
    bool told = true;  ///< false where the meter refused to tell its table

    int planned() const;  ///< active lines
    int found() const;    ///< lines of the meter
    int active() const;   ///< of them, active
    int wrong() const;    ///< lines that do not match
};

/// What the table should hold after an upload of `programs` against what it holds, both in the
/// order of the lines. `before` is the table before the upload, where it was asked for.
std::vector<TableComparison> compare_table(const std::vector<programme::ProgramRecord>& programs,
                                           UploadMode mode, const QString& before,
                                           const QString& after);

}  // namespace m47::plans
