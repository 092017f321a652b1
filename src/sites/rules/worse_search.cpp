// SPDX-License-Identifier: GPL-3.0-or-later
#include "worse_search.h"

namespace m47::sites {

void WorseSearch::step() {
    const Site& site = sites_[looked_at_++];
    for (ProgramComparison& program : worse_since_first(history_of(store_, site), decibels_))
        found_.push_back({site, std::move(program)});
}

std::vector<GotWorse> WorseSearch::found() const {
    return worst_first(found_);
}

}  // namespace m47::sites
