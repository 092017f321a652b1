// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "database.h"
#include "fault.h"
#include "link.h"
#include "measure_costs.h"
#include "measure_cycle.h"
#include "modes.h"
#include "program_state.h"
#include "program_tuning.h"
#include "realtime_panel.h"
#include "ticker.h"

namespace m47 {

/// The time until the next firing, "h:mm:ss".
QString time_left_text(int seconds);

/// When a measurement is taken: on demand, for every monitored program of a plan, or again and
/// again at a chosen interval. It is driven by three one-second ticks and knows no timer itself.
class Acquisition {
  public:
    Acquisition(Link& link, ProgramState& program, Database& database, RealtimePanel& panel,
                RealtimeState& state, Modes& modes, MeasureCycle& cycle)
        : link_(link),
          program_(program),
          database_(database),
          panel_(panel),
          state_(state),
          modes_(modes),
          cycle_(cycle),
          tuning_(link, program, panel, modes),
          costs_(link, program, panel, state, modes) {}

    /// The three ticks: timed acquisition, plan pass, clock. The owner of the screen sets them.
    Ticker* Timer1 = nullptr;
    Ticker* Timer2 = nullptr;
    Ticker* Timer3 = nullptr;

    /// How far a plan pass is: the place of the program being measured among the monitored ones of
    /// the plan and how many there are. 0 of 0 when the pass has ended.
    std::function<void(int place, int monitored)> on_progress;
    /// Told why, in the user's language, when a pass that nobody may be watching cannot begin or
    /// ends before its last program, as with a database that is locked.
    std::function<void(const QString& reason)> on_cut_short;
    /// Told why when a pass goes on without having measured one of its programs.
    std::function<void(const QString& reason)> on_left_out;

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

    /// As multiple_acq, but why a pass cannot begin, as with a database that cannot be read or a
    /// plan without programs, is told through on_cut_short. False then.
    bool unwatched_pass();

    /// Tells `fault` through on_cut_short.
    void tell_cut_short(const Fault& fault) const;

    /// Opens the plan `name` for passes, as "group" opens the first one. False, and nothing changed
    /// but the presentation, where there is no such plan.
    bool choose_plan(const QString& name);
    /// How many programs of the plan take part in a pass.
    int monitored_programs();

    /// How far a timed run or a pass is that goes on by itself; nothing where none does.
    std::optional<Said> running() const;

    /// One step of a plan pass. True while the pass goes on, false at the end of the plan.
    bool acq_multi();

  private:
    enum class Direction { back, forward };

    Recordset& programs();
    bool monitored();
    void present_plan();
    void open_programs();
    void open_plan();
    void measure_program();
    void measure_once(const std::function<void()>& prepare = {},
                      const ProgramIdentity& program = {});
    /// One row on; true where the set ends there and stays on its last row.
    static bool step(Recordset& set, Direction direction);
    void move_plan(Direction direction);
    void move_program(Direction direction);
    void show_time_left();
    void go_to_first_program(bool starts);
    void begin_pass();
    void list_monitored();
    void report_place();
    void forget_place();
    static void leave_at_first(Recordset& set);
    void end_pass();
    void report_progress(int place, int monitored) const;

    Link& link_;
    ProgramState& program_;
    Database& database_;
    RealtimePanel& panel_;
    RealtimeState& state_;
    Modes& modes_;
    MeasureCycle& cycle_;
    ProgramTuning tuning_;
    MeasureCosts costs_;
    std::vector<Bookmark> pass_;  ///< the monitored programs of the pass that runs
    int rows_of_pass_ = 0;        ///< programs of its plan when it began there
};

}  // namespace m47
