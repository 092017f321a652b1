// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_costs.h"

#include <algorithm>

#include "box_numbers.h"

namespace m47::plans {
namespace {

constexpr Bilingual kLimitsChanged{"Level limits changed to fit the unit: type them again",
                                   "Limiti di livello adattati all'unità: scriverli di nuovo"};
constexpr Bilingual kEmptySent{
    "A program without frequency was sent with zeros: type it or delete the program",
    "Un programma senza frequenza è stato inviato con degli zeri: scriverla o cancellarlo"};
constexpr Bilingual kToneBurst{"A program without DiSEqC was sent with TONE BURST: choose NONE",
                               "Un programma senza DiSEqC è stato inviato con TONE BURST: "
                               "scegliere NONE"};
constexpr Bilingual kTypedLost{"The refused program has left the boxes: put it back below",
                               "Il programma rifiutato ha lasciato le caselle: riprenderlo in "
                               "basso"};
constexpr Bilingual kUnchecked{
    "Other programs are out of range of the new oscillator: store each of them",
    "Altri programmi sono fuori campo con il nuovo oscillatore: memorizzarli uno a uno"};

bool changed(const QString& before, const QString& after) {
    return !before.trimmed().isEmpty() &&
           programme::box_value(before) != programme::box_value(after);
}

}  // namespace

void tell_changed_limits(ProgramState& program, const programme::ProgramRecord& before,
                         const programme::ProgramRecord& after) {
    const bool lost =
        changed(before.lev_min, after.lev_min) || changed(before.lev_max, after.lev_max);
    if (lost && !program.corrected.keep_unit) program.costs.tell(kLimitsChanged);
}

void tell_sent(ProgramState& program, const UploadPlan& plan, bool unset_diseqc) {
    const CorrectedBehaviour& corrected = program.corrected;
    const bool empty = std::ranges::any_of(plan.programs, programme::is_untuned);
    if (empty && !corrected.skip_empty) program.costs.tell(kEmptySent);
    if (unset_diseqc && !corrected.none_diseqc) program.costs.tell(kToneBurst);
}

void tell_refused_new(ProgramState& program) {
    if (!program.corrected.keep_new) program.costs.tell(kTypedLost);
}

void tell_unchecked(ProgramState& program) {
    if (!program.corrected.check_all) program.costs.tell(kUnchecked);
}

}  // namespace m47::plans
