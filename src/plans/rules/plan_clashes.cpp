// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_clashes.h"

#include <algorithm>

#include "numbers.h"
#include "program_limits.h"

namespace m47::plans {
namespace {

bool same_number(const QString& one, const QString& other) {
    return !one.trimmed().isEmpty() && !other.trimmed().isEmpty() &&
           link::typed_value(one) == link::typed_value(other);
}

}  // namespace

Clash find_clash(const std::vector<programme::ProgramRecord>& others,
                 const programme::ProgramRecord& record) {
    const auto shared = [&](QString programme::ProgramRecord::*field) {
        return std::ranges::any_of(others, [&](const programme::ProgramRecord& other) {
            return same_number(other.*field, record.*field);
        });
    };
    if (shared(&programme::ProgramRecord::pg_num)) return Clash::number;
    return shared(&programme::ProgramRecord::logger_pos) ? Clash::logger_position : Clash::none;
}

QString next_logger_position(const std::vector<programme::ProgramRecord>& programs) {
    double largest = 0;
    for (const programme::ProgramRecord& program : programs)
        largest = std::max(largest, link::typed_value(program.logger_pos));
    return largest + 1 > programme::kLastLoggerLine ? QString()
                                                    : link::format_number(largest + 1, "00");
}

}  // namespace m47::plans
