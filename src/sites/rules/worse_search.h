// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "what_got_worse.h"

namespace m47::sites {

/// What got worse at all sites, a site a step, so that whoever asks can do something else between
/// two of them.
class WorseSearch {
  public:
    /// `store` has to outlive it. Programs that fell by more than `decibels` are looked for.
    WorseSearch(const SiteStore& store, double decibels)
        : store_(store), decibels_(decibels), sites_(store.sites()) {}

    bool done() const { return looked_at_ == sites_.size(); }
    /// Looks at the next site; only when not done().
    void step();

    std::size_t sites() const { return sites_.size(); }
    std::size_t looked_at() const { return looked_at_; }
    /// What was found so far, the worst first.
    std::vector<GotWorse> found() const;

  private:
    const SiteStore& store_;
    double decibels_;
    std::vector<Site> sites_;
    std::size_t looked_at_ = 0;
    std::vector<GotWorse> found_;
};

}  // namespace m47::sites
