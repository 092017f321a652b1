// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

#include "unit_watch.h"

namespace m47::unattended {

/// Keeps a meter in the unit that a run began with, where its levels are kept as numbers of that
/// unit for longer than the run: somebody may choose another one at the meter's own keys.
class UnitGuard {
  public:
    explicit UnitGuard(link::Link& link) : link_(link), watch_(link) {}

    /// Told a text of one line where the unit was another one.
    std::function<void(const QString& text)> on_remark;

    /// The run goes on in the unit that the meter told last.
    void begin() { watch_.begin(); }

    /// Asks behind a row. True where the meter had another unit, and nobody knows in which its
    /// level is; the meter is set back to the unit of the run. False where nobody answers. A signal
    /// in it is told to the next command.
    bool has_strayed();

  private:
    void set_back();

    link::Link& link_;
    link::UnitWatch watch_;
};

}  // namespace m47::unattended
