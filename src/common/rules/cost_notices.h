// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <vector>

#include "texts.h"

namespace m47 {

/// Tells the user what a behaviour that stays as it is has just cost, once for each text: a run of
/// days must not say the same again and again.
class CostNotices {
  public:
    /// Shows the text; whoever has a place for it sets it.
    std::function<void(const Bilingual& text)> on_cost;
    /// Shows what is true of the deed just asked for and of no other; as on_cost where it is not
    /// set.
    std::function<void(const Bilingual& text)> on_remark;

    /// `text` is one of the constants of the room that tells it.
    void tell(const Bilingual& text);

    /// Told each time: what was lost just now, or why nothing was done.
    void tell_each(const Bilingual& text) const;

    /// The choices are others now: what costs something from here on is told anew.
    void begin_anew() { told_.clear(); }

  private:
    std::vector<const char*> told_;
};

}  // namespace m47
