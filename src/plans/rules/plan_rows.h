// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "program_record.h"
#include "recordset.h"

namespace m47::plans {

/// A program of a plan and its row, as the file held it when it was read; an unset DiSEqC command
/// is kNoDiseqcChosen.
struct PlanRow {
    db::Bookmark row = 0;
    programme::ProgramRecord program;

    bool operator==(const PlanRow&) const = default;
};

/// `program` with `text` in `member`, a tick ("1" or "0") or an alarm limit. A limit and the one it
/// is a pair with are corrected as a store corrects them, level limits in the unit that lies
/// `unit_offset` dB below dBuV; nothing else changes.
programme::ProgramRecord with_entry(programme::ProgramRecord program,
                                    const programme::ProgramField::Member& member,
                                    const QString& text, double unit_offset);

/// A line of the logger table that none of `programs` has: best that behind the last one in use.
/// Empty when all of 00 to 41 are taken.
QString free_logger_position(const std::vector<programme::ProgramRecord>& programs);

/// `order` with those of `rows` one place nearer to its begin (`up`) or end; at the end they stay.
std::vector<db::Bookmark> moved_rows(std::vector<db::Bookmark> order,
                                     const std::vector<PlanRow>& rows, bool up);

/// The fields in which `after` differs from `before` go into the row that is open in `set`.
void write_differences(db::Recordset& set, const programme::ProgramRecord& before,
                       const programme::ProgramRecord& after);

}  // namespace m47::plans
