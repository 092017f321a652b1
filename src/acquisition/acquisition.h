// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>

#include "plan_pass.h"
#include "realtime_rules.h"
#include "ticker.h"

namespace m47::acquisition {

/// The three one-second ticks of the screen: timed acquisition, plan pass, clock.
struct Ticks {
    Ticker& interval;
    Ticker& pass;
    Ticker& clock;
};

/// The toolbar keys of the screen, and when it measures: on demand, for every monitored program of
/// a plan, or again and again at a chosen interval. It is driven by the ticks and knows no timer
/// itself.
class Acquisition {
  public:
    /// `news` of the passes.
    Acquisition(realtime::RealtimeRules& rules, const Ticks& ticks, PassNews news);

    // The toolbar keys.
    void single();
    void group();
    void previous();
    void next();
    void previous_prog();
    void next_prog();
    void single_acq();
    void multiple_acq();
    void start();
    void stop();

    void cmdstart_Click();
    /// Loads the seconds of the chosen delay into `ticks_left`; without a choice they stay.
    void time_delay_Click();

    void Timer1_Timer();
    void Timer2_Timer();
    void Timer3_Timer();

    /// Timed acquisition is on.
    bool timed() const { return ticks_.interval.running(); }
    /// A pass over the plan goes on.
    bool passing() const { return pass_.running(); }
    /// How far a timed run or a pass is that goes on by itself; nothing where none does.
    std::optional<Said> running() const;
    /// The same for whoever watches, and how it is stopped; nothing where none goes on.
    std::optional<link::Activity::Run> run();

  private:
    using Step = bool (realtime::PlanWalk::*)();

    // Another plan, where a pass that runs goes on, or program; `end` is told where there is none.
    void step_plan(Step step, const Bilingual& end);
    void step_program(Step step, const Bilingual& end);
    /// Tells why there is nothing to go to, and what helps: `end` where a plan is open.
    void tell_no_step(const Bilingual& end) const;
    /// Whoever stops a measurement means the run that goes on as well.
    void or_end_runs(const std::function<void()>& body);
    void end_runs();
    /// Tells why a measurement would come to nothing, and what helps, where it would.
    void tell_what_lacks() const;
    void tell_no_program();
    bool fire();
    void show_time_left();
    void go_to_first_program(bool starts);

    realtime::RealtimeRules& rules_;
    Ticks ticks_;
    PlanPass pass_;
    int place_ = 0;      ///< of the pass
    int monitored_ = 0;  ///< programs in it
};

}  // namespace m47::acquisition
