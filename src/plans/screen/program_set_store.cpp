// SPDX-License-Identifier: GPL-3.0-or-later
// What the plan screen stores and deletes.
#include <QScopedValueRollback>

#include "changed_dialog.h"
#include "plan_costs.h"
#include "plan_questions.h"
#include "program_set.h"
#include "ui_program_set.h"

namespace m47::plans {
namespace {

constexpr Bilingual kLastPlan{
    "Another program has deleted the other plans meanwhile. The last one stays.",
    "Nel frattempo un altro programma ha cancellato gli altri piani. L'ultimo resta."};
constexpr Bilingual kLastProgram{
    "Another program has deleted the other programs of the plan meanwhile. The last one stays.",
    "Nel frattempo un altro programma ha cancellato gli altri programmi del piano. L'ultimo "
    "resta."};

constexpr Bilingual kOnlyPlan{
    "Nothing was deleted: the last plan stays. Make another one first (\"Create New Plan\").",
    "Nulla è stato cancellato: l'ultimo piano resta. Crearne prima un altro (\"Crea un nuovo piano "
    "di programmi\")."};
constexpr Bilingual kOnlyProgram{
    "Nothing was deleted: a plan keeps its last program. Store another one first (\"New "
    "Program\").",
    "Nulla è stato cancellato: un piano conserva l'ultimo programma. Memorizzarne prima un altro "
    "(\"Crea un nuovo programma\")."};
constexpr Bilingual kNoPlan{"There is no plan: make one first.",
                            "Non c'è alcun piano: occorre prima crearne uno."};
constexpr Bilingual kPlanGone{"The plan %1 is gone: another program has deleted it.",
                              "Il piano %1 non c'è più: un altro programma l'ha cancellato."};

}  // namespace

double ProgramSet::offset() const {
    return unit_offset(program_.unit_index);
}

/// Limits that nobody has typed since they were shown may be of another unit than the present one.
std::optional<double> ProgramSet::offset_of_limits(const programme::ProgramRecord& record) const {
    const bool none = record.lev_min.trimmed().isEmpty() && record.lev_max.trimmed().isEmpty();
    if (!program_.corrected.keep_unit || none) return offset();
    return typed_offset_;
}

/// True, and the user knows, where there is no plan that anything could be stored in.
bool ProgramSet::lacks_plan() {
    if (sets_.has_current_plan()) return false;
    const QString lost = sets_.plan();
    if (sets_.refresh()) move_plan(true);
    tell_problem(this, sets_.plan().isEmpty() ? program_.texts.pick(kNoPlan)
                                              : program_.texts.pick(kPlanGone).arg(lost));
    return true;
}

/// The same where there is no program to be changed or sent.
bool ProgramSet::lacks_program() {
    if (lacks_plan()) return true;
    if (sets_.has_program()) return false;
    tell_no_program(this, program_.texts);
    return true;
}

/// Does `store`, and asks whose entries are to stay where another program has changed them since
/// they were shown.
ProgramSet::Outcome ProgramSet::unless_changed(const std::function<Outcome()>& store) {
    for (;;) {
        try {
            return store();
        } catch (const ChangedMeanwhile& change) {
            ChangedDialog dialog(change, program_.texts, this);
            dialog.exec();
            if (dialog.choice() == ChangedDialog::Choice::neither) return Outcome::put_off;
            if (dialog.choice() == ChangedDialog::Choice::stored) {
                take_as_stored();
                move_plan(true);
                return Outcome::kept_theirs;
            }
            known_ = change.now;
        }
    }
}

Clash ProgramSet::try_to_store(programme::ProgramRecord& record, bool over) {
    const programme::ProgramRecord typed = record;
    QString oscillator = boxes_.oscillator();
    const Clash clash =
        sets_.store_record(record, oscillator, offset_of_limits(record), over, &known_);
    if (clash == Clash::none && !typed_offset_) tell_changed_limits(program_, typed, record);
    return clash;
}

/// The user knows why, where nothing was stored.
ProgramSet::Outcome ProgramSet::store_record(bool over) {
    if (over ? lacks_program() : lacks_plan()) return Outcome::clash;
    return unless_changed([&] {
        programme::ProgramRecord record = boxes_.read();
        const Clash clash = try_to_store(record, over);
        if (clash == Clash::none) {
            take_as_stored();
            if (lost_ && (over ? lost_->row == shown_row_ : lost_->refused_new))
                forget_lost_edits();
            // A new row is not the current one; whoever adds it moves to it.
            if (over) mostra_record();
            return Outcome::stored;
        }
        ui_->prog_num->setText(record.pg_num);
        beep();
        beep();
        tell_clash(this, program_.texts, clash);
        return Outcome::clash;
    });
}

void ProgramSet::store_as_new() {
    if (lacks_plan()) return;
    Outcome outcome = Outcome::clash;
    try {
        outcome = store_record(false);
    } catch (const std::exception&) {
        // A number that was meant for a new program would renumber the one on the screen with
        // "store".
        ui_->prog_num->setText(known_.program.pg_num);
        throw;
    }
    if (outcome == Outcome::kept_theirs || outcome == Outcome::put_off) return;
    if (outcome == Outcome::clash && program_.corrected.keep_new) return;
    if (outcome == Outcome::clash) tell_refused_new(program_);
    const QScopedValueRollback<bool> refused(refused_new_, outcome == Outcome::clash);
    sets_.last_program();
    mostra_record();
}

void ProgramSet::add_new() {
    if (!may_leave()) return;
    const QString name = ask_plan_name(this, program_.texts.message(kAddPlan), QString());
    if (name.isEmpty()) return;
    sets_.add_new(name);
    move_plan(true);
}

/// Deletes what the user has `seen`, and asks where another program has changed it since. Tells
/// where there was nothing but the last one by then. False where it was not deleted.
bool ProgramSet::remove_seen(RemovedRows seen, const Bilingual& last_one,
                             const std::function<bool(const RemovedRows&)>& remove) {
    for (;;) {
        try {
            if (remove(seen)) return true;
            if (!lacks_plan()) tell_problem(this, program_.texts.pick(last_one));
            return false;
        } catch (const RemovalChanged& change) {
            ChangedDialog dialog(change, program_.texts, this);
            dialog.exec();
            if (dialog.choice() != ChangedDialog::Choice::mine) return false;
            seen = change.now;
        }
    }
}

void ProgramSet::del_old() {
    if (!sets_.can_delete_plan()) return tell_nothing_done(kOnlyPlan);
    const RemovedRows seen = sets_.seen_plan(known_);
    if (!ask_remove(this, program_.texts, sets_.plan())) return;
    const bool gone = remove_seen(
        seen, kLastPlan, [this](const RemovedRows& known) { return sets_.del_old(&known); });
    if (gone) take_as_stored();
    move_plan(true);
}

void ProgramSet::delete_program() {
    if (!sets_.can_delete_program()) {
        // Others may have left this one alone.
        if (sets_.refresh()) move_plan(true);
        return tell_nothing_done(kOnlyProgram);
    }
    if (!ask_remove(this, program_.texts, sets_.program().pg_num)) return;
    const bool gone =
        remove_seen(sets_.seen_program(known_), kLastProgram,
                    [this](const RemovedRows& known) { return sets_.delete_program(&known); });
    if (gone) take_as_stored();
    move_plan(true);
}

}  // namespace m47::plans
