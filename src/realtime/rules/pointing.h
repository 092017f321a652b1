// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>

#include "measure_cycle.h"
#include "measure_steps.h"
#include "realtime_rules.h"
#include "tuning.h"
#include "unit_watch.h"

namespace m47::realtime {

/// One quantity alone, again and again, for somebody who turns a dish. It is the measurement cycle
/// with nothing but that ticked, on a copy of what the screen shows: tuned and ranged once, then
/// asked for as fast as the line answers. For the MER the meter stays in its QPSK mode until
/// leave(). Nothing goes to the page or to a log, and no box, lamp or tick of the screen changes.
class Pointing {
  public:
    /// Takes the screen of `rules` as it stands now; sends nothing yet. `quantity` is level, C/N or
    /// MER.
    explicit Pointing(RealtimeRules& rules,
                      measurement::Quantity quantity = measurement::Quantity::level);

    /// One value, the first behind a whole cycle. Nothing where the meter gave none that is sure,
    /// or one in a unit that somebody has just chosen at its keys; the next one tunes and ranges
    /// anew then. Told to end, it ends with link::Interrupted.
    std::optional<measurement::Measurement> next();

    /// Brings the meter back into its measuring mode, where it is in another. Never throws.
    void leave() noexcept;

  private:
    bool measured() const;
    void begin();
    void begin_mer();
    void ask_again();
    void ask();
    void sure(const std::function<void()>& take);
    bool outgrown() const;
    bool unit_changed();
    std::optional<double> value() const;

    RealtimeRules& rules_;
    RealtimePanel panel_;
    RealtimeState state_;
    Tuning tuning_;
    MeasureSteps steps_;
    MeasureCycle cycle_;
    measurement::ProgramIdentity program_;
    measurement::Quantity quantity_;
    std::optional<double>
        ranged_at_;  ///< the value behind the whole cycle, which set the attenuator
    link::UnitWatch unit_;
    bool begun_ = false;
    bool in_qpsk_ = false;  ///< the meter may be in its QPSK mode
};

}  // namespace m47::realtime
