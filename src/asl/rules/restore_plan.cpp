// SPDX-License-Identifier: GPL-3.0-or-later
#include "restore_plan.h"

#include <algorithm>

namespace m47 {

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
    return std::any_of(plan.begin(), plan.end(), [](const SlotPlan& one) {
        return one.fate == SlotFate::written || one.fate == SlotFate::emptied;
    });
}

QList<int> slots_that_differ(const RestorePlan& plan, const SlotTable& now) {
    QList<int> differing;
    for (std::size_t slot = 0; slot < plan.size(); ++slot) {
        const auto& wanted = plan[slot].file ? plan[slot].file : plan[slot].now;
        if (wanted && now[slot] != wanted) differing += static_cast<int>(slot);
    }
    return differing;
}

}  // namespace m47
