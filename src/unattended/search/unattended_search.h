// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "line_recording.h"
#include "meter_connection.h"
#include "options.h"
#include "row_output.h"
#include "standard_streams.h"
#include "texts.h"

namespace m47::unattended {

/// What sweep, identification and peaking have around them with nobody at the screen: where their
/// rows go, the recording of the line, the way to the meter and how a signal ends them. A signal
/// ends the search, which sets the meter back; a second one breaks that off.
class UnattendedSearch {
  public:
    /// What it says is English from here on.
    UnattendedSearch(Texts& texts, MeterConnection& connection, const Options& options);

    /// Records the line from here on where the options ask for it.
    void record();

    /// Connects to the meter, runs `search` and waits for the reader of its rows. The exit status:
    /// what `status` says of the search, or kNoLink where no meter answered or nobody is to be
    /// asked any more.
    int run(const std::function<void()>& search, const std::function<int()>& status);

    link::Link& link() const { return connection.link(); }
    /// A row or the recording did not get where it should.
    bool output_lost() const { return output.lost() || recording_.lost(); }

    const Texts& texts;
    MeterConnection& connection;
    const Options& options;
    RowOutput output{platform::kStandardOutput};

  private:
    bool meter_answers();

    LineRecording recording_;
};

}  // namespace m47::unattended
