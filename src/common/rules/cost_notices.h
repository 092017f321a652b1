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

    /// `text` is one of the constants of the room that tells it.
    void tell(const Bilingual& text);

    /// The same for something that was lost just now and is told each time.
    void tell_each(const Bilingual& text) const;

    /// The choices are others now: what costs something from here on is told anew.
    void begin_anew() { told_.clear(); }

  private:
    std::vector<const char*> told_;
};

}  // namespace m47
