// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "reading.h"

namespace m47::band {

/// Whoever can be asked for a level of the band.
class LevelAsker {
  public:
    virtual ~LevelAsker() = default;

    /// Tunes to `mhz` of the intermediate band and gives the level there with its range mark; one
    /// that was not measured where there is none that is sure. Told to end, it throws Interrupted.
    virtual measurement::Reading level(double mhz) = 0;

    /// Nobody answers any more.
    virtual bool lost() const = 0;

    /// The last level was in another unit than those before it.
    virtual bool strayed() const { return false; }
};

}  // namespace m47::band
