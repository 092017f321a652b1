// SPDX-License-Identifier: GPL-3.0-or-later
#include "restore_plan.h"

#include <algorithm>

namespace m47::asl {
namespace {

bool changes(const SlotPlan& one) {
    return one.fate == SlotFate::written || one.fate == SlotFate::emptied;
}

/// The meter writes a name that it is told by command in its own way: what fills it up is not
/// part of it.
bool same_satellite(const SlotBlock& one, const SlotBlock& other) {
    return one.tuning() == other.tuning() && one.name() == other.name();
}

}  // namespace

RestorePlan restore_plan(const SlotTable& now, const SlotTable& file) {
    RestorePlan plan;
    for (std::size_t slot = 0; slot < plan.size(); ++slot) {
        SlotPlan& one = plan[slot];
        one.now = now[slot];
        one.file = file[slot];
        if (!one.file)
            one.fate = SlotFate::left_alone;
        else if (one.now == one.file)
            one.fate = SlotFate::unchanged;
        else
            one.fate = *one.file == SlotBlock() ? SlotFate::emptied : SlotFate::written;
    }
    return plan;
}

bool changes_any(const RestorePlan& plan) {
    return std::any_of(plan.begin(), plan.end(), changes);
}

QList<int> overwritten_unread(const RestorePlan& plan) {
    QList<int> unread;
    for (std::size_t slot = 0; slot < plan.size(); ++slot)
        if (changes(plan[slot]) && !plan[slot].now) unread += static_cast<int>(slot);
    return unread;
}

QList<int> slots_that_differ(const RestorePlan& plan, const SlotTable& now) {
    QList<int> differing;
    for (std::size_t slot = 0; slot < plan.size(); ++slot) {
        const auto& wanted = plan[slot].file ? plan[slot].file : plan[slot].now;
        if (wanted && !(now[slot] && same_satellite(*now[slot], *wanted)))
            differing += static_cast<int>(slot);
    }
    return differing;
}

}  // namespace m47::asl
