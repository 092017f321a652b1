// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "belief_bars.h"
#include "identification_run.h"
#include "program_state.h"

namespace m47::identify {

/// So many candidates are shown.
inline constexpr int kShownCandidates = 10;

/// The bars of the ten most probable candidates, of "none of these" and of "no satellite", in the
/// order of `standings`.
std::vector<Bar> bars_of(const std::vector<Standing>& standings,
                         const std::vector<Candidate>& candidates, const Texts& texts);

/// What is being asked: "Level at 11778.0 MHz (13 V)", or the lock there, which takes a while.
QString question_text(const Asked& asked, const Texts& texts);

/// How far it is: "88 answers, 41 s, LNB drift +1.2 MHz"; what is not known yet is left out.
QString facts_text(int answers, double seconds, std::optional<double> drift, const Texts& texts);

/// What was answered: "48.3 dBuV", "locked, +1.2 MHz off", "no lock", "no sure answer".
QString answer_text(const Asked& asked, std::optional<LevelUnit> unit, const Texts& texts);

/// How the LNB is fed, as it is called elsewhere: "18 V 22 kHz".
QString feed_text(const LnbState& state);

}  // namespace m47::identify
