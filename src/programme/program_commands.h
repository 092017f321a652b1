// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include "program_row.h"

namespace m47::programme {

// The commands that bring the meter and the antenna to what a program of a plan says. The upload of
// a plan sends them, and so does a pass that tunes everything.

/// Direct tuning, or through oscillator `loc_osc0` (0 to 3) of the plan at `mhz`: its frequency is
/// set, then it is selected.
QStringList oscillator_commands(bool direct, int loc_osc0, double mhz);

/// The LNB supply: 0 off, 1 13 V, 2 18 V.
QStringList supply_commands(int lnb_volt);

/// The 22 kHz tone: 0 off, 1 on.
QString tone_command(int k22);

/// Entry `index` of kDiseqcCommands.
QString diseqc_command(int index);

/// `word` and `value` in two digits.
QString with_pair(const QString& word, double value);

/// Tunes the meter as `program` says, stores it, switches the supplies off again and enters it in
/// the logger table where it is active.
QStringList commands_of_program(const ProgramRecord& program, const Oscillators& oscillators);

/// Brings oscillator, supply, tone and dish to what `program` says; its frequency is no part of
/// it. A DiSEqC command that is unset or "NONE" is left out.
QStringList switching_commands(const ProgramRow& program, const Oscillators& oscillators);

}  // namespace m47::programme
