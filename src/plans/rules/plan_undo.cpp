// SPDX-License-Identifier: GPL-3.0-or-later
// What was stored is taken back and made again.
#include <algorithm>
#include <ranges>

#include "database_transaction.h"
#include "fields.h"
#include "plan_sets.h"
#include "schema.h"
#include "stored_rows.h"
#include "tables.h"

namespace m47::plans {
namespace {

constexpr Bilingual kChangedSince{
    "Another program has changed this in the file since. Nothing was undone.",
    "Nel frattempo un altro programma l'ha modificato nel file. Nulla è stato annullato."};
constexpr Bilingual kChangedSinceForth{
    "Another program has changed this in the file since. Nothing was redone.",
    "Nel frattempo un altro programma l'ha modificato nel file. Nulla è stato ripetuto."};

[[noreturn]] void refuse(Direction direction) {
    throw ChangeRefused(direction == Direction::back ? kChangedSince : kChangedSinceForth);
}

bool is_program(const RowChange& row) {
    return QLatin1String(row.table) == QLatin1String(db::table::kProgrammi);
}

/// Of a row of programs that is there once the change has been taken to `direction`.
bool comes(const RowChange& row, Direction direction) {
    return is_program(row) && outcome_of(row, direction).has_value();
}

QVariant value_in(const std::optional<db::StoredRow>& row, const char* field) {
    if (!row) return {};
    const db::Table& table = db::table_named(QString::fromLatin1(db::table::kProgrammi));
    return (*row)[db::field_place(table, QString::fromLatin1(field))];
}

/// Its number or its line becomes another one.
bool renumbers(const RowChange& row) {
    return value_in(row.before, db::field::kPgNum) != value_in(row.after, db::field::kPgNum) ||
           value_in(row.before, db::field::kLoggerPos) !=
               value_in(row.after, db::field::kLoggerPos);
}

}  // namespace

/// Only what the change itself has left in the file may be replaced.
void PlanSets::need_as_left(const PlanChange& change, Direction direction) {
    const Direction from = direction == Direction::back ? Direction::forth : Direction::back;
    for (const RowChange& row : change.rows) {
        const auto now =
            db::read_row(database_.connection(), QString::fromLatin1(row.table), row.row);
        if (now != outcome_of(row, from)) refuse(direction);
        const bool plan_comes = QLatin1String(row.table) == QLatin1String(db::table::kGruppo) &&
                                outcome_of(row, direction);
        if (plan_comes && has_plan(change.plan)) refuse(direction);
    }
}

/// A plan is one that the screen could have made: no program without its plan, no plan without a
/// program, no number or line twice on account of this change.
void PlanSets::need_whole_plan(const PlanChange& change, Direction direction) {
    db::Recordset set = database_.of_plan(db::table::kProgrammi, change.plan);
    if (has_plan(change.plan) == set.empty()) refuse(direction);
    for (const RowChange& row : change.rows) {
        if (!comes(row, direction) || !renumbers(row)) continue;
        set.go_to(row.row);
        if (find_clash(programs_of(change.plan, row.row), read(set)) != Clash::none)
            refuse(direction);
    }
}

void PlanSets::show_changed(const PlanChange& change, Direction direction) {
    const std::optional<db::Bookmark> current = current_row();
    const bool same_plan = plan_ == change.plan;
    if (!has_plan(change.plan)) {
        plans_.requery();
        return first_plan();
    }
    show_plan(change.plan);
    const auto shown = std::ranges::find_if(
        change.rows, [&](const RowChange& row) { return comes(row, direction); });
    const bool is_there = current && std::ranges::binary_search(programs_->rows(), *current);
    if (shown != change.rows.end())
        programs_->go_to(shown->row);
    else if (same_plan && is_there)
        programs_->go_to(*current);
}

void PlanSets::replay(const PlanChange& change, Direction direction) {
    all_or_nothing([&] {
        need_as_left(change, direction);
        for (const RowChange& row : change.rows)
            db::write_row(database_.connection(), QString::fromLatin1(row.table), row.row,
                          outcome_of(row, direction));
        need_whole_plan(change, direction);
    });
}

}  // namespace m47::plans
