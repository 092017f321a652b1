// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QStringList>
#include <vector>

#include "plan_import.h"

namespace m47::plans {

/// No plan and no scan table is larger, in bytes.
inline constexpr qint64 kLargestPlanFile = qint64{1024} * 1024;

/// The plan `name` as a text with one line a program under a line of field names, separated by
/// `separator` (TAB or comma), numbers with ".".
QString plan_file_text(const QString& name, const std::vector<programme::ProgramRecord>& programs,
                       const programme::Oscillators& oscillators, QChar separator);

/// What a file offers to import.
struct ImportFile {
    std::vector<ImportCandidate> candidates;
    QStringList unknown_columns;
    int not_satellite = 0;  ///< terrestrial and cable channels, none of which is a candidate
    /// False where it is neither a plan nor a scan table, or larger than any plan.
    bool understood = false;
};

/// A plan file, separated by TAB, comma or semicolon, with "." or "," in its numbers, or a DVB scan
/// table.
ImportFile parse_import_file(const QByteArray& bytes, double unit_offset);

}  // namespace m47::plans
