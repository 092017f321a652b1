// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "database.h"
#include "fault.h"
#include "realtime_rules.h"

namespace m47::acquisition {

/// Told of a pass while it goes; what is empty is not told.
struct PassNews {
    /// How far the pass is: the place of the program being measured among the monitored ones of
    /// the plan and how many there are. 0 of 0 when the pass has ended.
    std::function<void(int place, int monitored)> progress = {};
    /// Why, in the user's language, a pass that nobody may be watching cannot begin or ends before
    /// its last program, as with a database that is locked.
    std::function<void(const QString& reason)> cut_short = {};
    /// Why a pass goes on without having measured one of its programs.
    std::function<void(const QString& reason)> left_out = {};
};

/// A pass over the open plan: it measures each monitored program once. It knows no time; whoever
/// began it takes it on step by step for as long as it is running.
class PlanPass {
  public:
    PlanPass(realtime::RealtimeRules& rules, PassNews news)
        : rules_(rules), news_(std::move(news)) {}

    /// Begins at the first program, over the rows that the plan has now. A Fault, and no pass
    /// begun, where they cannot be read or there are none.
    void begin();
    /// The same where nobody may be watching: the reason is told as cut_short, false then.
    bool begin_unwatched();

    bool running() const { return running_; }

    /// One step: measures a program at most. What ends the pass early is told as cut_short.
    void step();

    /// Ends the pass where it is.
    void stop();

    /// Another plan has been opened: a pass that runs goes on there.
    void plan_changed();

    /// The number of the program that was measured last, or was to be; empty before the first.
    const QString& program() const { return program_; }

    /// The row at which the next step begins; nothing at the end of the plan, or without one.
    std::optional<db::Bookmark> place() const;
    /// Lets the next step begin at `place`, also where the pass has just ended; told as cut_short
    /// where that row can no longer be read.
    void take_again(db::Bookmark place);

  private:
    bool advance();
    bool recall();
    void measure_program();
    void end();
    void list_monitored() { monitored_ = rules_.plans.monitored(); }
    void tell_other_antenna();
    void report_place();
    void report_progress(int place, int monitored) const;
    void tell_cut_short(const Fault& fault) const;

    realtime::RealtimeRules& rules_;
    PassNews news_;
    bool running_ = false;
    std::vector<db::Bookmark> monitored_;  ///< the monitored programs of the pass that runs
    int rows_ = 0;                         ///< programs of its plan when it began there
    QString program_;                      ///< see program()
    QStringList antenna_;                  ///< what its first program needs of the antenna
};

}  // namespace m47::acquisition
