// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "plan_pass.h"
#include "realtime_rules.h"

namespace m47::acquisition {

/// What a run over a plan is asked for.
struct PlanRunOrder {
    int passes = 1;          ///< 0: until told to stop
    int every = 0;           ///< seconds from the start of a pass to the start of the next
    bool reconnect = false;  ///< wait for the meter at the start, go on after a lost link
};

/// Passes over the open plan with nobody at the screen: the same as the screen's own, one after the
/// other at fixed times. A pass that takes longer than the interval makes the next
/// one wait for the next of those times, so that none is doubled. After a lost link the program
/// whose measurement was lost is measured first.
class PlanRun {
  public:
    enum class End { done, stopped, link_lost };

    PlanRun(link::Link& link, realtime::RealtimeRules& rules, const PlanRunOrder& order)
        : link_(link), rules_(rules), order_(order) {}

    /// True when the run shall end; looked at between measurements and while waiting.
    std::function<bool()> told_to_stop;
    /// True when the run shall end before its next pass; looked at between two passes and while the
    /// meter is waited for.
    std::function<bool()> told_to_pause;
    /// Tries once to find the meter again and to prepare it. True when it can measure.
    std::function<bool()> connect;
    /// Lets `seconds` pass; sleeps where it is empty.
    std::function<void(double seconds)> pass_time;
    /// Called at the end of a pass that was not broken off, with what it took.
    std::function<void(double seconds)> on_pass;
    /// Called when it is clear what the run does now; a text of one line.
    std::function<void(const QString& text)> on_progress;
    /// Called with what a later reader has to know: a gap begins or ends, a firing fell out, a pass
    /// was cut short, a program left out.
    std::function<void(const QString& text)> on_remark;

    /// `rules` with a plan open and the meter prepared, unless `order` says to wait for it.
    End run();

    /// A pass was cut short or measured nothing, or left out a program that the meter refuses.
    bool incomplete() const { return incomplete_; }

    /// How many rows are missing because the meter's answers stayed doubtful.
    int missing() const { return missing_; }

    /// So often a measurement is taken before its row is given up.
    static constexpr int kMostTries = 3;

  private:
    End run_pass();
    End walk();
    End next_step();
    bool find_meter(const QString& why);
    PassNews news();
    End recover(const std::optional<db::Bookmark>& place);
    bool refused_again();
    bool doubtful_again();
    void cut_short(const QString& reason);
    bool wait(double seconds);
    bool wait_for_pass();
    bool stop_asked() const { return told_to_stop && told_to_stop(); }
    bool pause_asked() const { return stop_asked() || (told_to_pause && told_to_pause()); }
    bool last_pass() const { return order_.passes > 0 && pass_ >= order_.passes; }
    void show_program(int place, int monitored);
    void report(const QString& text) const;
    void remark(const QString& text) const;
    QString time_text() const;

    link::Link& link_;
    realtime::RealtimeRules& rules_;
    PlanRunOrder order_;
    std::unique_ptr<PlanPass> plan_pass_;
    static constexpr double kFirstPause = 1;
    double pause_ = kFirstPause;  ///< seconds before the next try to find the meter again
    int pass_ = 0;
    int doubts_ = 0;          ///< on end at the present program
    int refusals_ = 0;        ///< on end at the present program, each of which lost the link
    int missing_ = 0;         ///< rows
    bool measured_ = false;   ///< in the present pass
    bool idle_ = false;       ///< the last pass measured nothing
    bool cut_short_ = false;  ///< the present pass was, and it is told
    bool incomplete_ = false;
    QString reason_;        ///< why a pass was cut short last
    double begin_ = 0;      ///< of the run, on the steady clock
    double next_pass_ = 0;  ///< on the same clock
};

}  // namespace m47::acquisition
