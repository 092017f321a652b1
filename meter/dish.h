// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace meter {

/// The dish on its motor: it follows the shaft, but for the play of the gear. A step is a tenth of
/// a degree.
class Dish {
  public:
    /// `backlash`: steps that the shaft turns before the dish follows, after each change of
    /// direction; `slack` of them are open to the east at the start (0 to `backlash`).
    Dish(double east, int backlash, int slack);

    /// The shaft stands so many steps east of where it stood at the start.
    void follow(int shaft);

    /// Where the dish looks, degrees east.
    double east() const;

  private:
    double start_;
    int backlash_;
    int slack_;
    int dish_ = 0;
};

}  // namespace meter
