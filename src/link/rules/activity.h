// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>

#include "clock.h"
#include "texts.h"

namespace m47::link {

/// What is being done at the meter, for whoever watches, and whether the user wants it to stop.
/// The rooms tell it by Work and as runs; it knows no widget.
class Activity {
  public:
    explicit Activity(const Clock& clock) : clock_(clock) {}

    /// Something that goes on by itself, with pauses between its pieces of work.
    struct Run {
        Said what;     ///< "Program 3 of 12"
        Said how_far;  ///< told when it was stopped in a pause
        int done = 0;  ///< of `all`, which is 0 where nobody knows
        int all = 0;
        std::function<void()> stop;  ///< ends it in a pause; sends nothing
    };

    /// Told whenever there is something else to show.
    std::function<void()> on_change;
    /// Told when what the user wanted to stop has ended: how far it came.
    std::function<void(const Said& how_far)> on_stopped;

    /// What is done now: that of the work in hand, in a pause that of the run; nothing where none
    /// is.
    std::optional<Said> what() const;
    /// What the run is about while a piece of its work is in hand; nothing where none is.
    std::optional<Said> run() const;
    /// Seconds until all is done, as the part that is done took them; nothing where that is not
    /// known yet.
    std::optional<double> seconds_left() const;

    /// The user wants it to stop: work ends before its next command, a run in a pause at once.
    /// Nothing where nothing is done.
    void stop();
    bool stop_asked() const { return stop_asked_; }
    /// A piece of work is in hand.
    bool working() const { return working_; }
    /// Who closes a window while it is done wants it to stop; it is done for its screen alone.
    bool ends_with_window() const { return working_ && ends_with_window_; }

    // Told by Work -------------------------------------------------------------------------
    void begin();
    void end_with_window() { ends_with_window_ = true; }
    /// What the work in hand does now; nothing to say without one.
    void say(const Said& what);
    /// The work has come so far.
    void reached(int done, int all);
    /// `how_far` it came is told where it was to be stopped.
    void end(const std::optional<Said>& how_far);

    /// A run goes on as `run` says, or none does.
    void set_run(const std::optional<Run>& run);

  private:
    /// How much of something was done since when, on the steady clock.
    struct Pace {
        double begin = 0;
        int first = 0;
        int done = 0;
        int all = 0;
    };

    void note(Pace& pace, int done, int all) const;
    std::optional<double> seconds_left(const Pace& pace) const;
    void tell_change() const;

    const Clock& clock_;
    bool working_ = false;
    bool stop_asked_ = false;
    bool ends_with_window_ = false;
    std::optional<Said> what_;
    std::optional<Run> run_;
    Pace work_pace_;
    Pace run_pace_;
};

/// "Uploading program 17 of 95, still 2 min", in the language of `texts`, or that it stops and
/// when; empty where nothing is done.
QString activity_text(const Activity& activity, const Texts& texts);

}  // namespace m47::link
