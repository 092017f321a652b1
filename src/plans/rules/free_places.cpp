// SPDX-License-Identifier: GPL-3.0-or-later
#include "free_places.h"

#include <algorithm>
#include <cmath>

#include "numbers.h"

namespace m47 {
void UsedNumbers::take(const ProgramRecord& program) {
    // What has no number goes to the meter as program 0.
    const double number = typed_value(program.pg_num);
    const auto count = static_cast<double>(used_.size());
    const bool whole = number >= 0 && number < count && number == std::floor(number);
    if (whole) used_[static_cast<std::size_t>(number)] = true;
}

QString UsedNumbers::first_free() const {
    const auto free = std::ranges::find(used_, false);
    if (free == used_.end()) return {};
    return format_number(static_cast<double>(free - used_.begin()), "000");
}

std::optional<int> place_oscillator(Oscillators& oscillators, int preferred, const QString& mhz) {
    std::array<std::size_t, 4> order{0, 1, 2, 3};
    if (preferred >= 0 && preferred < 4) {
        const auto first = order.begin() + preferred;
        std::rotate(order.begin(), first, first + 1);
    }
    const auto same = [&](std::size_t k) {
        return typed_value(oscillators[k]) == typed_value(mhz);
    };
    const auto free = [&](std::size_t k) { return oscillators[k].trimmed().isEmpty(); };
    auto place = std::ranges::find_if(order, same);
    if (place == order.end()) place = std::ranges::find_if(order, free);
    if (place == order.end()) return std::nullopt;
    if (free(*place)) oscillators[*place] = mhz;
    return static_cast<int>(*place);
}

}  // namespace m47
