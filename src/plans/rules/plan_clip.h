// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "plan_file.h"
#include "plan_rows.h"

namespace m47::plans {

/// `rows` of the plan `name` as a spreadsheet takes them from the clipboard: a plan file with TAB.
/// An unset DiSEqC command is `unset_diseqc`.
QString copied_rows(const QString& name, const std::vector<PlanRow>& rows,
                    const programme::Oscillators& oscillators, int unset_diseqc);

/// What was pasted as the candidates of an import; rows without the line of field names have the
/// columns of copied_rows().
ImportFile pasted_rows(const QString& text, double unit_offset);

/// Of the rows of a paste the first that cannot be stored, whose program would otherwise be left
/// out; nullptr where all can, or are in the plan already.
const ImportRow* first_refused(const ImportPreview& preview);

}  // namespace m47::plans
