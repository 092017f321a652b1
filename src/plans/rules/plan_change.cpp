// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_change.h"

#include <algorithm>
#include <utility>

#include "fields.h"
#include "schema.h"
#include "tables.h"

namespace m47::plans {
namespace {

constexpr Bilingual kOfProgram{"program %1", "programma %1"};
constexpr Bilingual kOfPrograms{"programs: %1", "programmi: %1"};
constexpr Bilingual kOfPlan{"plan %1", "piano %1"};
constexpr Bilingual kOfOscillators{"oscillators of the plan %1", "oscillatori del piano %1"};

bool is_on(const RowChange& row, const char* table) {
    return QLatin1String(row.table) == QLatin1String(table);
}

db::StoredRow content_of(const char* table, const db::Recordset& set) {
    db::StoredRow row;
    for (const db::Field& field : db::table_named(QString::fromLatin1(table)).fields)
        row.push_back(set.value(QString::fromLatin1(field.name)));
    return row;
}

QString number_in(const RowChange& row) {
    const db::Table& table = db::table_named(QString::fromLatin1(row.table));
    const db::StoredRow& content = row.after ? *row.after : *row.before;
    return content[db::field_place(table, QString::fromLatin1(db::field::kPgNum))]
        .toString()
        .trimmed();
}

}  // namespace

const std::optional<db::StoredRow>& outcome_of(const RowChange& row, Direction direction) {
    return direction == Direction::back ? row.before : row.after;
}

Said change_in_words(const PlanChange& change) {
    std::vector<const RowChange*> programs;
    bool of_plan = false;
    for (const RowChange& row : change.rows) {
        if (is_on(row, db::table::kProgrammi)) programs.push_back(&row);
        of_plan = of_plan || is_on(row, db::table::kGruppo);
    }
    if (of_plan) return {kOfPlan, {change.plan}};
    if (programs.empty()) return {kOfOscillators, {change.plan}};
    if (programs.size() == 1) return {kOfProgram, {number_in(*programs.front())}};
    return {kOfPrograms, {QString::number(programs.size())}};
}

void ChangeRecorder::begin(const QString& plan) {
    change_ = PlanChange{plan, {}};
}

RowChange& ChangeRecorder::note(const char* table, db::Bookmark row, bool& is_new) {
    const auto found = std::ranges::find_if(change_.rows, [&](const RowChange& change) {
        return change.row == row && is_on(change, table);
    });
    is_new = found == change_.rows.end();
    if (!is_new) return *found;
    change_.rows.push_back({table, row});
    return change_.rows.back();
}

void ChangeRecorder::will_change(const char* table, const db::Recordset& set) {
    bool is_new = false;
    RowChange& change = note(table, set.bookmark(), is_new);
    if (is_new) change.before = content_of(table, set);
}

void ChangeRecorder::was_added(const char* table, db::Bookmark row) {
    bool is_new = false;
    note(table, row, is_new);
}

PlanChange ChangeRecorder::finish(const QSqlDatabase& database) {
    for (RowChange& row : change_.rows)
        row.after = db::read_row(database, QString::fromLatin1(row.table), row.row);
    std::erase_if(change_.rows, [](const RowChange& row) { return row.before == row.after; });
    return std::exchange(change_, {});
}

}  // namespace m47::plans
