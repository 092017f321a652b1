// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QStringList>
#include <functional>
#include <string_view>

#include "measure_steps.h"
#include "measurement_log.h"
#include "page_model.h"

namespace m47::realtime {

/// One measurement: `measure` asks the meter for every ticked value, `storemeas` keeps the outcome
/// as a row of the page and a line of the log. Always called as this pair.
class MeasureCycle {
  public:
    MeasureCycle(link::Link& link, RealtimePanel& panel, RealtimeState& state, Tuning& tuning,
                 MeasureSteps& steps, measurement::PageModel& page,
                 measurement::MeasurementLog& log)
        : link_(link),
          panel_(panel),
          state_(state),
          tuning_(tuning),
          steps_(steps),
          page_(page),
          log_(log) {}

    /// Called with what was measured at `moment` and its line, before the line goes into the log.
    std::function<void(const measurement::Measurement&, std::string_view line,
                       const QDateTime& moment)>
        before_row;

    /// Called with what was measured, just before on_row.
    std::function<void(const measurement::Measurement&)> on_measured;

    /// Called with the eleven cells of each row that storemeas has put on the page and in the log.
    std::function<void(const QStringList&)> on_row;

    /// Called after each line for the log with the reason why it was lost, empty when it was kept.
    std::function<void(const QString& reason)> on_log_written;

    /// Called where storemeas writes no row, with the command whose answer was doubtful.
    std::function<void(const QString& command)> on_doubt;

    /// Runs one cycle for `program` of a plan, or for none, behind `prepare` where there is
    /// something to set first. A fault in the cycle ends it at once, silently; the values shown so
    /// far stay. An answer that is doubtful ends it too, and there is no row: it might be another
    /// program's.
    void measure(const std::function<void()>& prepare = {},
                 const measurement::ProgramIdentity& program = {});

    /// Records the cycle just run; does nothing while the link is down or no measure is ticked.
    void storemeas();

    /// The rows of the page so far.
    int rows() const { return page_.measurements(); }

    /// The command whose answer made the last cycle's values doubtful; empty when none did.
    const QString& doubt() const { return doubt_; }

    /// The frequency has just been sent: what follows is measured there.
    void tuned();

  private:
    void run_trapped();
    void run_cycle();
    void blank_results();
    void digital_cycle();
    void analog_cycle();
    /// Takes a step whose box is ticked, told as `words`.
    void step(bool ticked, const Bilingual& words, void (MeasureSteps::*take)());
    void tell_quality() const;
    void write_row();
    void log_row();

    link::Link& link_;
    RealtimePanel& panel_;
    RealtimeState& state_;
    Tuning& tuning_;
    MeasureSteps& steps_;
    measurement::PageModel& page_;
    measurement::MeasurementLog& log_;
    QString doubt_;
};

}  // namespace m47::realtime
