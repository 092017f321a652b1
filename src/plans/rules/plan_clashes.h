// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

#include "program_record.h"

namespace m47::plans {

/// What a program shares with another one of its plan, though it must not.
enum class Clash { none, number, logger_position };

/// The first clash of `record` with one of `others`, the other programs of its plan. Numbers are
/// compared by value; an empty number or position clashes with nothing.
Clash find_clash(const std::vector<programme::ProgramRecord>& others,
                 const programme::ProgramRecord& record);

/// The position behind the last one in use, "01" where none is; empty when the meter's table, which
/// ends at 41, is full.
QString next_logger_position(const std::vector<programme::ProgramRecord>& programs);

}  // namespace m47::plans
