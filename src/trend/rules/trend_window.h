// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "trend_data.h"

namespace m47::trend {

/// The stretch of time that the trend shows: all of it until the user zooms, and with "follow" on
/// it goes along with the newest row.
class TrendWindow {
  public:
    const TrendRange& shown() const { return shown_; }
    bool follows() const { return follows_; }

    /// Rows came: `held` is the time of all of them, `newest` that of the last.
    void rows_came(TrendRange held, double newest);

    /// The user zoomed or panned to `asked`, which is kept within what can be shown. Going away
    /// from the newest row ends the following, so that the next row does not tear the user back.
    void choose(TrendRange asked);

    /// Shows all again and goes on showing all.
    void reset();

    /// Turning it on goes to the newest row at once.
    void set_follows(bool follows);

  private:
    void show_all();
    void show_newest();

    TrendRange held_;
    double newest_ = 0;
    bool any_ = false;
    TrendRange shown_{0, 60};
    bool whole_ = true;
    bool follows_ = true;
};

}  // namespace m47::trend
