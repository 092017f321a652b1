// SPDX-License-Identifier: GPL-3.0-or-later
#include "realtime_rules.h"

namespace m47 {

RealtimeRules::RealtimeRules(Link& link, ProgramState& program, Database& database)
    : tuning(link, panel, state),
      steps(link, program, panel, state, tuning),
      modes(link, program, database, panel, state, tuning),
      cycle(link, program, panel, state, tuning, steps, page, log) {
    panel.cmdlev = program.unit_index;
    steps.cmdlev_Click = [this](int index) { modes.cmdlev_Click(index); };
}

void RealtimeRules::single_acq() {
    state.plan_run_active = true;
    // A timed firing must not stay locked out when the program is told to end in the middle.
    struct Running {
        bool& active;
        ~Running() { active = false; }
    } running{state.plan_run_active};
    cycle.measure();
    cycle.storemeas();
}

void RealtimeRules::tick_complete_measures() {
    if (state.meas_mode == kDigitalMode) {
        for (const int measure : {kDcpLevel, kChber, kPvBer, kCfo, kMer})
            panel.meas_stated[static_cast<std::size_t>(measure)] = true;
    } else {
        panel.meas_statea[kLevel] = true;
    }
}

}  // namespace m47
