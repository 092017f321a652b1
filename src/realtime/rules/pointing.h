// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

#include "measure_cycle.h"
#include "measure_steps.h"
#include "realtime_rules.h"
#include "tuning.h"

namespace m47::realtime {

/// The level alone, again and again, for somebody who turns a dish. It is the measurement cycle
/// with nothing but the level ticked, on a copy of what the screen shows: tuned and ranged once,
/// then the level is asked for as fast as the line answers. Nothing goes to the page or to a log,
/// and no box, lamp or tick of the screen changes.
class Pointing {
  public:
    /// Takes the screen of `rules` as it stands now; sends nothing yet.
    explicit Pointing(RealtimeRules& rules);

    /// One level, the first behind a whole cycle. Nothing where the meter gave none that is sure;
    /// the next one tunes and ranges anew then. Told to end, it ends with link::Interrupted.
    std::optional<measurement::Measurement> next();

  private:
    bool measured() const;
    void ask_again();
    bool outgrown() const;
    std::optional<double> level() const;

    RealtimeRules& rules_;
    RealtimePanel panel_;
    RealtimeState state_;
    Tuning tuning_;
    MeasureSteps steps_;
    MeasureCycle cycle_;
    measurement::ProgramIdentity program_;
    std::optional<double> ranged_at_;  ///< the level that the attenuator was set for
};

}  // namespace m47::realtime
