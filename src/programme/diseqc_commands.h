// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace m47::programme {

/// The DiSEqC commands that the meter builds itself: it is told the place in this list, counted
/// from 0. The two runs of sixteen positions are different commands with the same texts, and the
/// double blanks belong to the texts.
inline constexpr std::array kDiseqcCommands{
    "TONE BURST",    "DATA BURST",    "POWER ON",      "RESET",        "STANDBY",
    "SW1 OFF l LO",  "SW1 ON h LO",   "SW2 OFF H",     "SW2 ON  V",    "SW3 OFF LNB 1",
    "SW3 ON  LNB 2", "SW4 OFF LNB 3", "SW4 ON  LNB 4", "SW5 OFF",      "SW5 ON",
    "SW6 OFF",       "SW6 ON",        "SW7 OFF",       "SW7 ON",       "SW8 OFF",
    "SW8 ON",        "l LO",          "V Pol",         "Sat Po A",     "SW Opt A",
    "h LO",          "H Pol",         "Sat Po B",      "SW Opt B",     "Sel SW1 in A",
    "Sel SW2 in A",  "Sel SW3 in A",  "Sel SW4 in A",  "Sel SW1 in B", "Sel SW2 in B",
    "Sel SW3 in B",  "Sel SW4 in B",  "Po 1-V-l LO",   "Po 1-V-h LO",  "Po 1-H-l LO",
    "Po 1-H-h LO",   "Po 2-V-l LO",   "Po 2-V-h LO",   "Po 2-H-l LO",  "Po 2-H-h LO",
    "Po 3-V-l LO",   "Po 3-V-h LO",   "Po 3-H-l LO",   "Po 3-H-h LO",  "Po 4-V-l LO",
    "Po 4-V-h LO",   "Po 4-H-l LO",   "Po 4-H-h LO",   "Po 1-V-l LO",  "Po 1-V-h LO",
    "Po 1-H-l LO",   "Po 1-H-h LO",   "Po 2-V-l LO",   "Po 2-V-h LO",  "Po 2-H-l LO",
    "Po 2-H-h LO",   "Po 3-V-l LO",   "Po 3-V-h LO",   "Po 3-H-l LO",  "Po 3-H-h LO",
    "Po 4-V-l LO",   "Po 4-V-h LO",   "Po 4-H-l LO",   "Po 4-H-h LO",  "USER 1",
    "USER 2",        "USER 3",        "USER 4",        "NONE"};
static_assert(kDiseqcCommands.size() == 74);

/// "NONE", the last entry.
inline constexpr int kDiseqcNone = 73;

}  // namespace m47::programme
