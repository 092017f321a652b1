// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace m47 {

/// The commands that bring the meter and the antenna to what a program of a plan says. The upload
/// of a plan sends them, and so does a pass that tunes everything.

/// Direct tuning, or through oscillator `loc_osc0` (0 to 3) of the plan at `mhz`: its frequency is
/// set, then it is selected.
QStringList oscillator_commands(bool direct, int loc_osc0, double mhz);

/// The LNB supply: 0 off, 1 13 V, 2 18 V.
QStringList supply_commands(int lnb_volt);

/// The 22 kHz tone: 0 off, 1 on.
QString tone_command(int k22);

/// Entry `index` of kDiseqcCommands.
QString diseqc_command(int index);

}  // namespace m47
