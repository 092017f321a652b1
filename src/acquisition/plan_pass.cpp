// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_pass.h"

#include <algorithm>

#include "engine.h"
#include "fields.h"
#include "program_row.h"

namespace m47::acquisition {
namespace {

constexpr Bilingual kProgramsGone{
    "Another program deleted or replaced programs of the plan before they were measured.",
    "Un altro programma ha cancellato o sostituito programmi del piano prima della misura."};

constexpr Bilingual kNotSwitched{
    "Antenna not switched for each program: tick Tune everything in a pass (--full-tune)",
    "Antenna non commutata per ogni programma: spuntare Imposta tutto in una passata "
    "(--full-tune)"};

/// The pass is whole whether or not its first row can be read: the next one reads them anew.
void leave_at_first(db::Recordset& set) {
    try {
        if (!set.empty()) set.move_first();
    } catch (const db::EngineFault&) {
        return;
    }
}

}  // namespace

/// Another program may have replaced the rows since the last pass.
void PlanPass::begin() {
    rules_.modes.reread_plan();
    rules_.plans.programs().move_first();
    list_monitored();
    rows_ = rules_.plans.programs().count();
    antenna_.clear();
    rules_.state.plan_run_active = true;
    running_ = true;
}

bool PlanPass::begin_unwatched() {
    try {
        begin();
        return true;
    } catch (const Fault& fault) {
        tell_cut_short(fault);
        return false;
    }
}

void PlanPass::step() {
    running_ = false;
    try {
        running_ = advance();
    } catch (const Fault& fault) {
        // A plan that was deleted meanwhile ends its pass; the next one comes at its time.
        end();
        tell_cut_short(fault);
    }
}

/// True while the pass goes on, false at the end of the plan.
bool PlanPass::advance() {
    if (!recall()) return false;
    db::Recordset& set = rules_.plans.programs();
    if (programme::ProgramRow(set).monitored()) measure_program();
    set.move_next();
    return true;
}

/// Shows the next program, unless the plan ends here. At most one unmonitored program is passed
/// over; a second one in a row is recalled and not measured.
bool PlanPass::recall() {
    db::Recordset& set = rules_.plans.programs();
    const link::Suspended suspended(rules_.link);
    if (!set.end_of_set() && !programme::ProgramRow(set).monitored()) set.move_next();
    if (!set.end_of_set()) {
        rules_.modes.mostra_record_realtime();
        return true;
    }
    // What has left the set was passed over.
    const bool gone = set.count() < rows_;
    leave_at_first(set);
    if (gone) throw Fault(kProgramsGone);
    end();
    return false;
}

void PlanPass::measure_program() {
    realtime::ProgramTuning& tuning = rules_.program_tuning;
    const bool full_tune = rules_.program.corrected.full_tune;
    if (full_tune && !tuning.possible()) {
        if (news_.left_out) news_.left_out(tuning.reason());
        return;
    }
    report_place();
    if (!full_tune) tell_other_antenna();
    const auto prepare = [this, full_tune] {
        if (full_tune) rules_.program_tuning.tune_everything();
        rules_.costs.tell_other_bandwidth();
    };
    const db::Recordset& row = rules_.plans.programs();
    program_ = programme::ProgramRow(row).pg_num();
    rules_.measure_once(prepare, {row.text(db::field::kNome), program_});
}

/// What is measured at an antenna that is set for another program is no value of this one.
void PlanPass::tell_other_antenna() {
    const QStringList needed = rules_.program_tuning.antenna();
    if (antenna_.isEmpty()) antenna_ = needed;
    if (needed != antenna_) rules_.program.costs.tell(kNotSwitched);
}

void PlanPass::stop() {
    rules_.state.plan_run_active = false;
    running_ = false;
    report_progress(0, 0);
    try {
        rules_.plans.programs().move_last();
    } catch (const Fault&) {
        // The pass has ended whatever the database does; the next one begins at the first program.
        return;
    }
}

void PlanPass::end() {
    rules_.state.plan_run_active = false;
    report_progress(0, 0);
}

/// What was shown of the place is no longer true.
void PlanPass::plan_changed() {
    if (!rules_.state.plan_run_active) return;
    monitored_.clear();
    rows_ = rules_.plans.programs().count();
    report_progress(0, 0);
}

std::optional<db::Bookmark> PlanPass::place() const {
    const std::optional<db::Recordset>& set = rules_.modes.rs_programs;
    return set && !set->end_of_set() ? std::optional(set->bookmark()) : std::nullopt;
}

void PlanPass::take_again(db::Bookmark place) {
    try {
        rules_.plans.programs().go_to(place);
        running_ = true;
    } catch (const Fault& fault) {
        tell_cut_short(fault);
    }
}

void PlanPass::report_place() {
    const auto place_of = [this](db::Bookmark program) {
        return std::find(monitored_.begin(), monitored_.end(), program);
    };
    const db::Bookmark here = rules_.plans.programs().bookmark();
    // The user may have gone on to another plan, or monitored another program, since the pass
    // began.
    if (place_of(here) == monitored_.end()) list_monitored();
    const auto place = place_of(here);
    if (place == monitored_.end()) return;
    report_progress(static_cast<int>(place - monitored_.begin()) + 1,
                    static_cast<int>(monitored_.size()));
}

void PlanPass::report_progress(int place, int monitored) const {
    if (news_.progress) news_.progress(place, monitored);
}

void PlanPass::tell_cut_short(const Fault& fault) const {
    if (news_.cut_short) news_.cut_short(fault.text(rules_.program.texts));
}

}  // namespace m47::acquisition
