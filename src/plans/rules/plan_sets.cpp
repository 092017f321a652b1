// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_sets.h"

#include <utility>

#include "diseqc_commands.h"
#include "fields.h"
#include "tables.h"

namespace m47::plans {
namespace {

bool step_back(db::Recordset& set) {
    if (!set.begin_of_set()) set.move_previous();
    if (!set.begin_of_set()) return true;
    if (!set.empty()) set.move_first();
    return false;
}

bool step_on(db::Recordset& set) {
    if (!set.end_of_set()) set.move_next();
    if (!set.end_of_set()) return true;
    if (!set.empty()) set.move_last();
    return false;
}

}  // namespace

PlanSets::PlanSets(db::Database& database, const CorrectedBehaviour& corrected)
    : database_(database),
      corrected_(corrected),
      plans_(db::Recordset::table(database.connection(), db::table::kGruppo)) {
    first_plan();
}

void PlanSets::crea_records(const QString& plan) {
    const QString name = db::stored_plan_name(plan);
    db::Recordset programs = database_.of_plan(db::table::kProgrammi, name);
    db::Recordset config = database_.of_plan(db::table::kConfigurazione, name);
    // Only now nothing can fail any more: the programs of one plan never stand under another name.
    plan_ = name;
    programs_ = std::move(programs);
    config_ = std::move(config);
    names_.reset();
}

/// Makes the plan `name` the current row of the list of plans. False where it has none.
bool PlanSets::find_plan(const QString& name) {
    if (db::find_plan(plans_, name)) return true;
    if (!plans_.empty()) plans_.move_first();
    return false;
}

/// Reads the list of plans anew: others add plans to it and take them away. False where the current
/// plan is gone and the first one has taken its place.
bool PlanSets::requery_plans() {
    plans_.requery();
    if (find_plan(plan_)) return true;
    first_plan();
    return false;
}

/// Makes the plan current in the list of plans as well, so that the next one follows it.
void PlanSets::show_plan(const QString& name) {
    plans_.requery();
    find_plan(name);
    crea_records(name);
}

void PlanSets::first_plan() {
    if (!plans_.empty()) plans_.move_first();
    crea_records(plans_.empty() ? QString() : plans_.text(db::field::kNome));
}

bool PlanSets::previous_plan() {
    if (!requery_plans()) return has_current_plan();
    const bool moved = step_back(plans_);
    crea_records(plans_.text(db::field::kNome));
    return moved;
}

bool PlanSets::next_plan() {
    if (!requery_plans()) return has_current_plan();
    const bool moved = step_on(plans_);
    crea_records(plans_.text(db::field::kNome));
    return moved;
}

void PlanSets::first_program() {
    read_anew(false);
    if (has_program()) programs_->move_first();
}

bool PlanSets::previous_program() {
    read_anew(false);
    return step_back(*programs_);
}

bool PlanSets::next_program() {
    read_anew(false);
    return step_on(*programs_);
}

void PlanSets::last_program() {
    read_anew(false);
    if (has_program()) programs_->move_last();
}

void PlanSets::go_to(db::Bookmark row) {
    read_anew(false);
    programs_->go_to(row);
}

void PlanSets::open_plan(const QString& plan) {
    if (!has_plan(plan)) throw db::RecordGone();
    show_plan(plan);
}

/// The oscillators of the plan, which its programs share, and the current program as well.
void PlanSets::read_anew(bool program) {
    config_->requery();
    if (program) programs_->go_to(programs_->bookmark());
}

programme::ProgramRecord PlanSets::program() const {
    return current_row() ? read(*programs_) : programme::ProgramRecord();
}

programme::ProgramRecord PlanSets::read(const db::Recordset& set) const {
    return programme::read_program(set, corrected_.none_diseqc ? programme::kDiseqcNone : 0);
}

std::vector<programme::ProgramRecord> PlanSets::programs() const {
    return programs_of(plan_, std::nullopt);
}

std::vector<programme::ProgramRecord> PlanSets::programs_of(
    const QString& plan, std::optional<db::Bookmark> without) const {
    std::vector<programme::ProgramRecord> records;
    db::Recordset set = database_.of_plan(db::table::kProgrammi, plan);
    for (; !set.end_of_set(); set.move_next())
        if (set.bookmark() != without) records.push_back(read(set));
    return records;
}

programme::Oscillators PlanSets::oscillators() const {
    return config_ && !config_->empty() ? programme::read_oscillators(*config_)
                                        : programme::Oscillators();
}

StoredProgram PlanSets::stored() const {
    return {has_program() ? programme::read_program(*programs_, kNoDiseqcChosen)
                          : programme::ProgramRecord(),
            oscillators()};
}

bool PlanSets::has_unset_diseqc() const {
    db::Recordset set = database_.of_plan(db::table::kProgrammi, plan_);
    for (; !set.end_of_set(); set.move_next())
        if (!programme::is_blank(read(set)) &&
            programme::read_program(set, kNoDiseqcChosen).diseqc_cmd < 0)
            return true;
    return false;
}

programme::Oscillators PlanSets::oscillators_of(const QString& plan) const {
    const db::Recordset config = database_.of_plan(db::table::kConfigurazione, plan);
    return config.empty() ? programme::Oscillators() : programme::read_oscillators(config);
}

bool PlanSets::has_current_plan() const {
    return !plan_.isEmpty() && has_plan(plan_);
}

bool PlanSets::has_plan(const QString& name) const {
    return !database_.of_plan(db::table::kGruppo, name).empty();
}

std::optional<db::Bookmark> PlanSets::current_row() const {
    // After a move that failed halfway the set may stand beside its rows.
    if (!programs_ || !programs_->has_current()) return std::nullopt;
    return programs_->bookmark();
}

/// Reads anew what a failed change may have left behind in the sets, and comes back to the program
/// that was current.
void PlanSets::reopen(std::optional<db::Bookmark> current) {
    show_plan(plan_);
    if (!current || !has_program()) return;
    while (!programs_->end_of_set() && programs_->bookmark() != *current) programs_->move_next();
    if (programs_->end_of_set()) programs_->move_first();
}

bool PlanSets::refresh() {
    const QString plan = plan_;
    const programme::ProgramRecord record = program();
    const programme::Oscillators known = oscillators();
    const std::optional<db::Bookmark> current = current_row();
    if (requery_plans()) reopen(current);
    return plan_ != plan || program() != record || oscillators() != known;
}

}  // namespace m47::plans
