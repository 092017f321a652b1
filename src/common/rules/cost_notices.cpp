// SPDX-License-Identifier: GPL-3.0-or-later
#include "cost_notices.h"

#include <algorithm>

namespace m47 {

void CostNotices::tell(const Bilingual& text) {
    if (std::ranges::find(told_, text.english) != told_.end()) return;
    told_.push_back(text.english);
    if (on_cost) on_cost(text);
}

void CostNotices::tell_each(const Bilingual& text) const {
    if (on_remark)
        on_remark(text);
    else if (on_cost)
        on_cost(text);
}

}  // namespace m47
