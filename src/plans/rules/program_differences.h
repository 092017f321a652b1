// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

#include "program_record.h"

namespace m47::plans {

/// True where two texts of a field are the same, or the same number in another form.
bool is_same_value(const QString& one, const QString& other);

/// The fields in which two records differ, "frequenza: 500 → 920.0".
QStringList program_differences(const programme::ProgramRecord& before,
                                const programme::ProgramRecord& after);

/// As above, but for what fills a gap of `before`; a missing frequency is none.
QStringList program_corrections(const programme::ProgramRecord& before,
                                const programme::ProgramRecord& after);

}  // namespace m47::plans
