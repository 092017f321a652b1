// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <functional>
#include <optional>

#include "link_antenna.h"
#include "peak_search.h"

namespace m47::peak {

/// How a search over the line has ended, and how it has left meter and motor.
struct PeakOutcome {
    SearchResult search;
    bool linked = false;          ///< the meter still answers
    bool motor_stopped = false;   ///< the meter has taken the stop of the motor
    bool attenuator_back = true;  ///< the attenuator is as it was
    /// The command over whose refusal the link was lost; empty where it was lost otherwise.
    QString refused{};
    /// Steps that the dish stands east of its start; nothing where nobody knows.
    std::optional<int> place{};

    /// It came to its own end, with the motor stopped; the link may have been lost since then.
    bool came_to_its_end() const;
    /// How many dB are gained by what was found; nothing where nothing was.
    std::optional<double> gain() const;
};

/// The search for the peak with all that has to be done around it: the meter is tuned, its
/// attenuator noted and set back, the motor stopped, however it ends.
class PeakRun {
  public:
    /// Searches over `link`, where the meter has been tuned by the commands `tuning`, which are
    /// sent first.
    PeakRun(link::Link& link, const SearchOptions& options, QStringList tuning = {});

    /// Asked before each drive and each reading; true ends the search.
    std::function<bool()> cancelled;
    /// Told of each reading as it comes.
    std::function<void(const Taken& taken)> on_reading;

    /// Searches once. The user's stop and the end of the program end it at once, as cancelled.
    PeakOutcome run();

  private:
    SearchResult search();
    void prepare();
    bool set_back();

    link::Link& link_;
    SearchOptions options_;
    QStringList tuning_;
    std::optional<int> attenuator_;  ///< as it was found
    bool prepared_ = false;          ///< something of the meter may be another since then
};

/// One sentence about how it ended, and one more where the meter is not as it was.
QString end_sentence(const PeakOutcome& outcome, const Texts& texts);

/// A place of the shaft: "1.2° east", "0.3° west", "0.0°".
QString place_text(int steps, const Texts& texts);

}  // namespace m47::peak
