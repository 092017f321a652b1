// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "diseqc.h"
#include "measure_costs.h"
#include "measure_cycle.h"
#include "measure_steps.h"
#include "measurement_log.h"
#include "modes.h"
#include "page_model.h"
#include "plan_walk.h"
#include "program_tuning.h"
#include "realtime_panel.h"
#include "tuning.h"

namespace m47::realtime {

/// Everything that measuring needs, without a screen: it owns the panel and the state that the
/// handlers share, page and log, and wires the rules to each other. When something is measured is
/// up to who uses it: the screen's Acquisition, or a PlanRun with nobody at the screen.
class RealtimeRules {
  public:
    RealtimeRules(link::Link& the_link, ProgramState& the_program, db::Database& the_database);
    RealtimeRules(const RealtimeRules&) = delete;
    RealtimeRules& operator=(const RealtimeRules&) = delete;

    link::Link& link;
    ProgramState& program;
    db::Database& database;
    RealtimePanel panel;
    RealtimeState state;
    measurement::PageModel page;
    measurement::MeasurementLog log;
    Tuning tuning;
    dish::Diseqc diseqc;
    MeasureSteps steps;
    Modes modes;
    MeasureCycle cycle;
    PlanWalk plans;
    ProgramTuning program_tuning;
    MeasureCosts costs;

    /// Ticks the measures of `mode` (kAnalogMode or kDigitalMode) whose steps run to their end.
    void tick_measures(int mode);

    /// One measurement for the program `identity` of a plan, or for none, behind `prepare`, as
    /// MeasureCycle::measure does it; its row is kept, and what it cost is told.
    void measure_once(const std::function<void()>& prepare = {},
                      const measurement::ProgramIdentity& identity = {});
};

}  // namespace m47::realtime
