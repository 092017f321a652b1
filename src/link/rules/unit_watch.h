// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "link.h"

namespace m47::link {

/// Whether somebody chose another unit at the meter's own keys while levels were asked for: nobody
/// knows then which of them are in which.
class UnitWatch {
  public:
    explicit UnitWatch(Link& link) : link_(link) {}

    /// From here on the unit is to be the one that the meter told last.
    void begin() { first_ = link_.settings.unit(); }

    /// Its index; nothing where the meter had told none.
    std::optional<int> first() const { return first_; }

    /// Asks the meter for its unit, once more where the answer is doubtful. True where it is
    /// another one; false where the meter does not tell. Told to end, it throws Interrupted.
    bool changed();

    /// Looks at a level that came. True where it lies so far from the one before that the meter was
    /// asked for its unit, and tells another one: the two cannot be compared then.
    bool changed_at(double level);

  private:
    Link& link_;
    std::optional<int> first_;
    std::optional<double> last_;
};

}  // namespace m47::link
