// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "level_asker.h"
#include "sweep_plan.h"

namespace m47::band {

/// A sweep, one question at a time for whoever runs it: between two of them it can be left.
class Sweep {
  public:
    Sweep(LevelAsker& asker, const SweepSpan& span) : asker_(asker), plan_(span) {}

    /// Asks the next question; its answer, which may be none. Nothing at the end, or where nobody
    /// answers any more, or in another unit.
    std::optional<Sample> step() {
        const std::optional<double> mhz = is_cut() ? std::nullopt : plan_.next();
        if (!mhz) return std::nullopt;
        const Sample sample{*mhz, asker_.level(*mhz)};
        if (is_cut()) return std::nullopt;
        plan_.take(sample);
        return sample;
    }

    const SweepPlan& plan() const { return plan_; }
    /// All was asked.
    bool whole() { return !plan_.next(); }

  private:
    bool is_cut() const { return asker_.lost() || asker_.strayed(); }

    LevelAsker& asker_;
    SweepPlan plan_;
};

}  // namespace m47::band
