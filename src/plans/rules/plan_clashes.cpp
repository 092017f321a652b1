// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_clashes.h"

#include <algorithm>

#include "numbers.h"
#include "program_limits.h"

namespace m47 {
namespace {

bool same_number(const QString& one, const QString& other) {
    return !one.trimmed().isEmpty() && !other.trimmed().isEmpty() &&
           typed_value(one) == typed_value(other);
}

}  // namespace

Clash find_clash(const std::vector<ProgramRecord>& others, const ProgramRecord& record) {
    const auto shared = [&](QString ProgramRecord::*field) {
        return std::ranges::any_of(others, [&](const ProgramRecord& other) {
            return same_number(other.*field, record.*field);
        });
    };
    if (shared(&ProgramRecord::pg_num)) return Clash::number;
    return shared(&ProgramRecord::logger_pos) ? Clash::logger_position : Clash::none;
}

QString next_logger_position(const std::vector<ProgramRecord>& programs) {
    double largest = 0;
    for (const ProgramRecord& program : programs)
        largest = std::max(largest, typed_value(program.logger_pos));
    return largest + 1 > kLastLoggerLine ? QString() : format_number(largest + 1, "00");
}

}  // namespace m47
