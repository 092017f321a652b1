// SPDX-License-Identifier: GPL-3.0-or-later
#include "used_numbers.h"

#include <algorithm>
#include <cmath>

#include "numbers.h"

namespace m47::plans {

void UsedNumbers::take(const programme::ProgramRecord& program) {
    // What has no number goes to the meter as program 0.
    const double number = link::typed_value(program.pg_num);
    const auto count = static_cast<double>(used_.size());
    const bool whole = number >= 0 && number < count && number == std::floor(number);
    if (whole) used_[static_cast<std::size_t>(number)] = true;
}

QString UsedNumbers::first_free() const {
    const auto free = std::ranges::find(used_, false);
    if (free == used_.end()) return {};
    return link::format_number(static_cast<double>(free - used_.begin()), "000");
}

}  // namespace m47::plans
