// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "link.h"
#include "modes.h"
#include "program_row.h"
#include "program_state.h"
#include "realtime_panel.h"

namespace m47::realtime {

/// Tunes everything that the current program of the open plan says, for plans over several
/// polarisations, bands or satellites. Without a current program each member is a Fault.
class ProgramTuning {
  public:
    ProgramTuning(link::Link& link, const ProgramState& program, RealtimePanel& panel, Modes& modes)
        : link_(link), program_(program), panel_(panel), modes_(modes) {}

    /// False where the program needs an oscillator that no LNB has: the meter would refuse it.
    bool possible() const;
    /// Why it is not possible, for the user.
    QString reason() const;

    /// What the program needs of the antenna, as the commands for it.
    QStringList antenna() const;

    /// Sends oscillator, supply, tone and DiSEqC. The oscillator sent is also the one that the
    /// frequency is checked against and that the row names; frequency and bandwidth, put into their
    /// boxes, are sent with the measurement.
    void tune_everything();

  private:
    programme::ProgramRow row() const;
    int oscillator() const;
    QString oscillator_text() const;

    link::Link& link_;
    const ProgramState& program_;
    RealtimePanel& panel_;
    Modes& modes_;
};

}  // namespace m47::realtime
