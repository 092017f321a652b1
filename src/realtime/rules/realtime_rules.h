// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "acquisition.h"
#include "diseqc.h"
#include "measure_cycle.h"
#include "measure_steps.h"
#include "measurement_log.h"
#include "modes.h"
#include "page_model.h"
#include "realtime_panel.h"
#include "tuning.h"

namespace m47 {

/// Everything the real-time screen does, without the screen: it owns the panel and the state that
/// the handlers share, and wires the rules to each other.
class RealtimeRules {
  public:
    RealtimeRules(Link& link, ProgramState& program, Database& database);
    RealtimeRules(const RealtimeRules&) = delete;
    RealtimeRules& operator=(const RealtimeRules&) = delete;

    RealtimePanel panel;
    RealtimeState state;
    PageModel page;
    MeasurementLog log;
    Tuning tuning;
    Diseqc diseqc;
    MeasureSteps steps;
    Modes modes;
    MeasureCycle cycle;
    Acquisition acquisition;

    /// Ticks the measures of `mode` (kAnalogMode or kDigitalMode) whose steps run to their end.
    void tick_measures(int mode);
};

}  // namespace m47
