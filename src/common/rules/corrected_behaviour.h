// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace m47 {

/// Behaviours that cost a value or a day's work and stay as they are unless the user chooses the
/// corrected one. Each member is an entry of the menu "Corrected behaviour", false at start.
struct CorrectedBehaviour {
    bool complete = false;     ///< C/N and noise are measured to their end
    bool full_tune = false;    ///< a pass sets supply, tone, oscillator and DiSEqC of each program
    bool verify = false;       ///< the logger table is compared with the plan after an upload
    bool keep_mode = false;    ///< coming back to the real-time screen keeps analog or digital
    bool keep_box = false;     ///< a box keeps its text where the meter gave no answer
    bool keep_unit = false;    ///< limits stay in the unit they were typed in
    bool skip_empty = false;   ///< programs without frequency are not uploaded
    bool keep_new = false;     ///< a new program that was refused stays in the boxes
    bool check_all = false;    ///< a new oscillator frequency checks every program of the plan
    bool none_diseqc = false;  ///< an unset DiSEqC command is "NONE", not "TONE BURST"
    bool plan_width = false;   ///< recalling a program sets its channel bandwidth too
    bool empty_alarm = false;  ///< an alarm without limits is told and checks nothing
    bool keep_copy = false;    ///< what is erased in the meter is read, filed and asked for first
    bool ask_twice = false;    ///< a value that surprises is asked for again
    bool ask_leave = false;    ///< edits of a program are asked about before it is left
};

/// One entry of the menu: the object name of its action and what it switches.
struct CorrectedEntry {
    const char* name;
    bool CorrectedBehaviour::*member;
};

inline constexpr std::array<CorrectedEntry, 15> kCorrectedEntries{{
    {"cmdcomplete", &CorrectedBehaviour::complete},
    {"cmdfulltune", &CorrectedBehaviour::full_tune},
    {"cmdverify", &CorrectedBehaviour::verify},
    {"cmdkeepmode", &CorrectedBehaviour::keep_mode},
    {"cmdkeepbox", &CorrectedBehaviour::keep_box},
    {"cmdkeepunit", &CorrectedBehaviour::keep_unit},
    {"cmdskipempty", &CorrectedBehaviour::skip_empty},
    {"cmdkeepnew", &CorrectedBehaviour::keep_new},
    {"cmdcheckall", &CorrectedBehaviour::check_all},
    {"cmdnonediseqc", &CorrectedBehaviour::none_diseqc},
    {"cmdplanwidth", &CorrectedBehaviour::plan_width},
    {"cmdemptyalarm", &CorrectedBehaviour::empty_alarm},
    {"cmdkeepcopy", &CorrectedBehaviour::keep_copy},
    {"cmdasktwice", &CorrectedBehaviour::ask_twice},
    {"cmdaskleave", &CorrectedBehaviour::ask_leave},
}};

/// Chooses every entry of the menu, or none.
constexpr void choose_all(CorrectedBehaviour& choices, bool chosen) {
    for (const CorrectedEntry& entry : kCorrectedEntries) choices.*entry.member = chosen;
}

/// True while every entry of the menu is chosen.
constexpr bool all_chosen(const CorrectedBehaviour& choices) {
    for (const CorrectedEntry& entry : kCorrectedEntries)
        if (!(choices.*entry.member)) return false;
    return true;
}

}  // namespace m47
