// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_walk.h"

#include <utility>

#include "engine.h"
#include "fault.h"
#include "fields.h"
#include "program_row.h"
#include "tables.h"

namespace m47::realtime {
namespace {

constexpr Bilingual kNoPlanOpen{"No plan is open.", "Nessun piano è aperto."};

}  // namespace

db::Recordset& PlanWalk::programs() {
    if (!modes_.rs_programs) throw Fault(kNoPlanOpen);
    return *modes_.rs_programs;
}

std::vector<db::Bookmark> PlanWalk::monitored() {
    std::vector<db::Bookmark> places;
    db::Recordset all = database_.of_plan(QLatin1String(db::table::kProgrammi), panel_.grp_name);
    for (all.move_first(); !all.end_of_set(); all.move_next())
        if (programme::ProgramRow(all).monitored()) places.push_back(all.bookmark());
    return places;
}

void PlanWalk::present_plan() {
    panel_.plan_controls_visible = true;
    panel_.plan_keys_visible = true;
    panel_.single_acq_visible = false;
    panel_.sat_opt_enabled = false;
    panel_.limits_enabled = false;
}

/// Opens the programs of the plan at which the set of plans stands. Where they cannot be read the
/// plan before stays open, so that its programs are never measured under another plan's name.
void PlanWalk::open_programs() {
    const QString name = panel_.grp_name;
    const auto programs = modes_.rs_programs;
    const auto config = modes_.rs_config;
    try {
        panel_.grp_name = database_.gruppo().text(db::field::kNome);
        modes_.crea_records_realtime();
    } catch (const db::EngineFault&) {
        panel_.grp_name = name;
        modes_.rs_programs = programs;
        modes_.rs_config = config;
        throw;
    }
}

/// The same for passes over it.
void PlanWalk::open_plan() {
    open_programs();
    state_.acq_kind = kPlan;
}

void PlanWalk::first_plan() {
    present_plan();
    const link::Suspended suspended(link_);
    database_.gruppo().requery();
    database_.gruppo().move_first();
    open_plan();
}

bool PlanWalk::choose_plan(const QString& name) {
    present_plan();
    const link::Suspended suspended(link_);
    database_.gruppo().requery();
    if (!db::find_plan(database_.gruppo(), name)) return false;
    open_plan();
    return true;
}

bool PlanWalk::step(db::Recordset& set, Direction direction) {
    if (direction == Direction::back) {
        set.move_previous();
        if (!set.begin_of_set()) return false;
        set.move_first();
    } else {
        set.move_next();
        if (!set.end_of_set()) return false;
        set.move_last();
    }
    return true;
}

bool PlanWalk::move_plan(Direction direction) {
    const link::Suspended suspended(link_);
    db::Recordset& plans = database_.gruppo();
    const db::Recordset before = plans;
    bool at_end = false;
    try {
        at_end = step(plans, direction);
        open_programs();
    } catch (const db::EngineFault&) {
        // Else the next step would begin at a plan that is not shown.
        plans = before;
        throw;
    }
    return !at_end;
}

bool PlanWalk::previous_plan() {
    return move_plan(Direction::back);
}

bool PlanWalk::next_plan() {
    return move_plan(Direction::forward);
}

bool PlanWalk::move_program(Direction direction) {
    const link::Suspended suspended(link_);
    // Only a walk that came to its end moves the set: one that failed would leave it beside its
    // rows.
    db::Recordset set = programs();
    bool at_end = false;
    do {
        at_end = step(set, direction);
    } while (!at_end && !programme::ProgramRow(set).monitored());
    programs() = std::move(set);
    modes_.mostra_record_realtime();
    return !at_end;
}

bool PlanWalk::previous_program() {
    return move_program(Direction::back);
}

bool PlanWalk::next_program() {
    return move_program(Direction::forward);
}

}  // namespace m47::realtime
