// SPDX-License-Identifier: GPL-3.0-or-later
#include "unit_guard.h"

#include "commands.h"
#include "fault.h"
#include "numbers.h"
#include "program_state.h"
#include "work.h"

namespace m47::unattended {

bool UnitGuard::has_strayed() {
    const link::InOrder in_order(link_);
    try {
        if (!watch_.changed()) return false;
        set_back();
    } catch (const Interrupted&) {
        return false;
    }
    return true;
}

void UnitGuard::set_back() {
    const int unit = *watch_.first();
    link_.send(link::command::kUnit + link::format_number(unit, " 00"));
    if (on_remark)
        on_remark(QStringLiteral("the unit was changed at the meter: nobody knows in which one the "
                                 "level of this row is; the meter is set back to %1")
                      .arg(unit_name(unit)));
}

}  // namespace m47::unattended
