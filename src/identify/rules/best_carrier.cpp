// SPDX-License-Identifier: GPL-3.0-or-later
#include "best_carrier.h"

#include <utility>

namespace m47::identify {
namespace {

/// How well a dish can be turned at the carrier: any lock is better than any level, which says
/// nothing about whose it is.
std::optional<std::pair<bool, double>> worth_of(const Answer& answer) {
    if (answer.locked.value_or(false)) return std::pair(true, answer.mer.value_or(0));
    if (answer.db && !answer.below_range) return std::pair(false, *answer.db);
    return std::nullopt;
}

}  // namespace

std::optional<Asked> best_carrier(const std::vector<Asked>& asked) {
    const Asked* best = nullptr;
    for (const Asked& one : asked) {
        if (!worth_of(one.answer)) continue;
        if (!best || worth_of(one.answer) > worth_of(best->answer)) best = &one;
    }
    return best ? std::optional(*best) : std::nullopt;
}

}  // namespace m47::identify
