// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>

#include "band_curve.h"

namespace m47::band {

/// What came of one state of the LNB, pass after pass: the last pass, the highest level at each
/// frequency and the mean of their powers. Each point is at a frequency that was measured. What a
/// later pass asks for the first time is held only where it is above the line of what was held
/// before: else a weaker pass that asks elsewhere would cut notches into the highest levels.
class BandTraces {
  public:
    /// The levels from now on are those of another pass; before its first one the last stands.
    void begin_pass() { begins_ = true; }
    /// Takes in a level; one that is no number is left out. One that lies outside of the meter's
    /// range has no part in the mean.
    void take(const Sample& sample);
    void clear() { *this = BandTraces(); }

    const BandCurve& live() const { return live_; }
    const BandCurve& max_hold() const { return max_hold_; }
    const BandCurve& average() const { return average_; }

  private:
    struct Sum {
        double power = 0;
        int count = 0;
    };

    BandCurve live_, max_hold_, average_;
    BandCurve held_before_;  ///< the highest levels as the pass began
    std::map<double, Sum> sums_;
    bool begins_ = true;
};

/// `curve` minus `reference` in dB at the frequencies of `curve`, where the reference has a level
/// on both sides.
BandCurve difference(const BandCurve& curve, const BandCurve& reference);

}  // namespace m47::band
