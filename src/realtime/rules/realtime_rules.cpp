// SPDX-License-Identifier: GPL-3.0-or-later
#include "realtime_rules.h"

namespace m47 {

RealtimeRules::RealtimeRules(Link& link, ProgramState& program, Database& database)
    : tuning(link, program, panel, state),
      diseqc(link, panel, state),
      steps(link, program, panel, state, tuning),
      modes(link, program, database, panel, state, tuning, diseqc),
      cycle(link, panel, state, tuning, steps, page, log),
      acquisition(link, program, database, panel, state, modes, cycle) {
    panel.cmdlev = program.unit_index;
    steps.cmdlev_Click = [this](int index) { modes.cmdlev_Click(index); };
}

void RealtimeRules::tick_measures(int mode) {
    if (mode == kDigitalMode) {
        for (const int measure : {kDcpLevel, kChber, kPvBer, kCfo, kMer})
            panel.meas_stated[static_cast<std::size_t>(measure)] = true;
    } else {
        panel.meas_statea[kLevel] = true;
    }
}

}  // namespace m47
