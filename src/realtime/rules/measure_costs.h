// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "alarm_limits.h"
#include "link.h"
#include "modes.h"
#include "program_state.h"
#include "realtime_panel.h"

namespace m47::realtime {

/// Looks at a measurement for what the behaviours that the user has not chosen cost of it, and
/// tells that.
class MeasureCosts {
  public:
    MeasureCosts(const link::Link& link, ProgramState& program, const RealtimePanel& panel,
                 const RealtimeState& state, const Modes& modes)
        : link_(link), program_(program), panel_(panel), state_(state), modes_(modes) {}

    /// Before and after each measurement.
    void begin();
    void end();

    /// Before a program of a plan is measured: another bandwidth gives another channel power.
    void tell_other_bandwidth();

  private:
    bool lacks_limits(AlarmRow row) const;
    void tell_empty_alarms();
    void tell_lost_level();

    const link::Link& link_;
    ProgramState& program_;
    const RealtimePanel& panel_;
    const RealtimeState& state_;
    const Modes& modes_;
    std::vector<AlarmRow> lacking_;  ///< the alarms without limits when the measurement began
};

}  // namespace m47::realtime
