// SPDX-License-Identifier: GPL-3.0-or-later
// Plans and programs that come and go: each change comes true as a whole or not at all.
#include <algorithm>
#include <utility>

#include "database_transaction.h"
#include "fault.h"
#include "fields.h"
#include "numbers.h"
#include "plan_sets.h"
#include "tables.h"

namespace m47::plans {
namespace {

constexpr Bilingual kPlanFilledMeanwhile{
    "Another program has stored programs in this plan meanwhile. Nothing was imported: choose the "
    "file again.",
    "Nel frattempo un altro programma ha memorizzato programmi in questo piano. Nulla è stato "
    "importato: scegliere di nuovo il file."};
constexpr Bilingual kOscillatorsChanged{
    "Another program has changed the oscillators of this plan meanwhile. Nothing was imported: "
    "choose the file again.",
    "Nel frattempo un altro programma ha modificato gli oscillatori di questo piano. Nulla è stato "
    "importato: scegliere di nuovo il file."};
constexpr Bilingual kNoPlanToStoreIn{"Nothing can be stored: there is no plan.",
                                     "Non si può memorizzare nulla: non c'è alcun piano."};

}  // namespace

/// Without its plan a row would be kept where nobody can see or delete it.
void PlanSets::need_plan() const {
    if (!has_current_plan()) throw Fault(kNoPlanToStoreIn);
}

void PlanSets::all_or_nothing(const std::function<void()>& body) {
    const QString plan = plan_;
    const std::optional<db::Bookmark> current = current_row();
    try {
        db::DatabaseTransaction transaction(database_.connection());
        recorder_.begin(plan_);
        body();
        PlanChange change = recorder_.finish(database_.connection());
        transaction.commit();
        if (!change.empty()) changes_.push_back(std::move(change));
    } catch (...) {
        plan_ = plan;
        try {
            reopen(current);
        } catch (const Fault&) {
            // What the user has to know is why the change failed.
        }
        throw;
    }
}

void PlanSets::add_rows(const QString& name) {
    for (const char* table :
         {db::table::kGruppo, db::table::kProgrammi, db::table::kConfigurazione}) {
        db::Recordset set = database_.of_plan(table, name);
        set.add_new();
        set.set(db::field::kNome, name);
        set.update();
        recorder_.was_added(table, set.last_added());
    }
    recorder_.concerns(name);
}

void PlanSets::add_new(const QString& name) {
    all_or_nothing([&] {
        if (has_plan(name)) return;
        add_rows(name);
        // What an earlier plan of this name has left.
        db::forget_names(database_.connection(), name);
    });
    show_plan(name);
}

bool PlanSets::can_delete_plan() const {
    QStringList names;
    db::Recordset plans = db::Recordset::table(database_.connection(), db::table::kGruppo);
    for (; !plans.end_of_set(); plans.move_next())
        names += db::stored_plan_name(plans.text(db::field::kNome));
    return names.contains(plan_) && names.count(plan_) < names.size() && !plan_.isEmpty();
}

RemovedRows PlanSets::rows_of(db::Recordset set) const {
    RemovedRows rows;
    if (!set.empty()) set.move_first();
    for (; !set.end_of_set(); set.move_next())
        rows.programs[set.bookmark()] = programme::read_program(set, kNoDiseqcChosen);
    return rows;
}

RemovedRows PlanSets::seen_program(const StoredProgram& known) const {
    RemovedRows rows;
    if (const auto row = current_row()) rows.programs[*row] = known.program;
    return rows;
}

RemovedRows PlanSets::seen_plan(const StoredProgram& known) const {
    RemovedRows rows = rows_of(*programs_);
    for (const auto& [row, program] : seen_program(known).programs) rows.programs[row] = program;
    rows.oscillators = known.oscillators;
    return rows;
}

bool PlanSets::del_old(const RemovedRows* seen) {
    bool deleted = false;
    // With the look at the others: they may delete plans too, and change this one.
    all_or_nothing([&] {
        if (!can_delete_plan()) return;
        RemovedRows now =
            rows_of(database_.of_plan(QString::fromLatin1(db::table::kProgrammi), plan_));
        now.oscillators = oscillators_of(plan_);
        if (seen) need_unchanged(*seen, now);
        for (const char* table :
             {db::table::kGruppo, db::table::kConfigurazione, db::table::kProgrammi}) {
            db::Recordset set = database_.of_plan(table, plan_);
            while (!set.empty()) {
                set.move_first();
                recorder_.will_change(table, set);
                set.remove();
            }
        }
        deleted = true;
    });
    if (!deleted) return false;
    plans_.requery();
    first_plan();
    return true;
}

bool PlanSets::can_delete_program() const {
    // As the file holds them now: others delete programs too.
    return database_.of_plan(db::table::kProgrammi, plan_).count() > 1;
}

bool PlanSets::delete_program(const RemovedRows* seen) {
    bool deleted = false;
    all_or_nothing([&] {
        if (!can_delete_program()) return;
        read_anew(true);
        const RemovedRows now{{{programs_->bookmark(), stored().program}}, {}};
        if (seen) need_unchanged(*seen, now);
        remove_current();
        deleted = true;
    });
    if (deleted) crea_records(plan_);
    return deleted;
}

void PlanSets::remove_current() {
    recorder_.will_change(db::table::kProgrammi, *programs_);
    programs_->remove();
}

/// Writes the program that is open, as a new row or over the current one.
void PlanSets::write_open(const programme::ProgramRecord& record, bool over) {
    if (over) recorder_.will_change(db::table::kProgrammi, *programs_);
    programs_->set(db::field::kNome, plan_);
    programme::write_program(*programs_, record);
    // The screen stores a number always; what came without one is no bandwidth of 0.
    if (record.satchbw.isEmpty()) programs_->set(db::field::kSatchbw, QVariant());
    programs_->update();
    if (!over) recorder_.was_added(db::table::kProgrammi, programs_->last_added());
}

/// Others may have filled the plan, or changed in it, since the user has looked at what is to come.
void PlanSets::need_room_for(const ImportPreview& import) {
    programs_->requery();
    config_->requery();
    if (import.oscillators_before != oscillators()) throw Fault(kOscillatorsChanged);
    std::vector<programme::ProgramRecord> others = programs();
    if (import.replaces_blank) std::erase_if(others, programme::is_blank);
    for (const ImportRow& row : import.rows) {
        if (!row.added() || !row.replaces) continue;
        const auto place = std::ranges::find(others, *row.replaces);
        if (place == others.end()) throw Fault(kPlanFilledMeanwhile);
        others.erase(place);
    }
    for (const ImportRow& row : import.rows)
        if (row.added() && find_clash(others, row.record) != Clash::none)
            throw Fault(kPlanFilledMeanwhile);
    if (import.replaces_blank && !others.empty()) throw Fault(kPlanFilledMeanwhile);
}

/// Opens the row that `row` is written to: a new one, or that of the program it replaces.
void PlanSets::open_row_for(const ImportRow& row) {
    if (!row.replaces) return programs_->add_new();
    programs_->move_first();
    while (read(*programs_) != *row.replaces) programs_->move_next();
    programs_->edit();
}

void PlanSets::apply_import(const ImportPreview& import) {
    const std::optional<db::Bookmark> current = current_row();
    all_or_nothing([&] {
        need_plan();
        need_room_for(import);
        if (import.replaces_blank) {
            programs_->move_first();
            remove_current();
        }
        for (const ImportRow& row : import.rows) {
            if (!row.added()) continue;
            open_row_for(row);
            write_open(row.record, row.replaces.has_value());
        }
        if (import.oscillators != oscillators()) write_oscillators(import.oscillators);
        keep_names(import);
    });
    come_back_to(current);
}

void PlanSets::keep_names(const ImportPreview& import) {
    std::vector<db::TransponderName> names;
    for (const ImportRow& row : import.rows)
        if (row.added())
            names.push_back({.mhz = link::typed_value(row.record.frequenza),
                             .supply = row.record.lnb_volt,
                             .name = row.name,
                             .code = row.code ? programme::code_rate_text(*row.code) : QString()});
    db::write_names(database_.connection(), plan_, names);
}

}  // namespace m47::plans
