// SPDX-License-Identifier: GPL-3.0-or-later
// What is done to many programs of a plan at once: to all of them or, with a Fault, to none.
#include <algorithm>

#include "fields.h"
#include "plan_sets.h"
#include "stored_rows.h"
#include "tables.h"
#include "used_numbers.h"

namespace m47::plans {
namespace {

constexpr Bilingual kRowsChanged{
    "Another program has changed these programs meanwhile. Nothing was stored; the table shows "
    "what is there now.",
    "Nel frattempo un altro programma ha modificato questi programmi. Nulla è stato memorizzato; "
    "la tabella mostra ciò che c'è ora."};
constexpr Bilingual kNoLineLeft{
    "The meter's logger table has no line left for all of these programs. Nothing was stored.",
    "La tabella datalogger dello strumento non ha righe per tutti questi programmi. Nulla è stato "
    "memorizzato."};
constexpr Bilingual kOneStays{"The last program of a plan stays. Nothing was deleted.",
                              "L'ultimo programma di un piano resta. Nulla è stato cancellato."};
constexpr Bilingual kNoNumberLeft{"All numbers of the plan are in use. Nothing was added.",
                                  "Tutti i numeri del piano sono in uso. Nulla è stato aggiunto."};

/// Without a line it cannot be active in the meter's table.
bool needs_line(const programme::ProgramRecord& before, const programme::ProgramRecord& after) {
    return after.logger_state && !before.logger_state && after.logger_pos.trimmed().isEmpty();
}

/// Gives a copy what it cannot share with the others of its plan.
void make_own(programme::ProgramRecord& copy, const std::vector<programme::ProgramRecord>& others) {
    UsedNumbers used;
    for (const programme::ProgramRecord& other : others) used.take(other);
    copy.pg_num = used.first_free();
    if (copy.pg_num.isEmpty()) throw Fault(kNoNumberLeft);
    copy.logger_pos = next_logger_position(others);
    copy.logger_state = copy.logger_state && !copy.logger_pos.isEmpty();
}

}  // namespace

std::vector<PlanRow> PlanSets::read_rows(const std::vector<db::Bookmark>& rows) const {
    std::vector<PlanRow> read;
    if (!programs_) return read;
    db::Recordset set = *programs_;
    for (const db::Bookmark row : rows) {
        try {
            set.go_to(row);
        } catch (const db::RecordGone&) {
            continue;
        }
        read.push_back({row, programme::read_program(set, kNoDiseqcChosen)});
    }
    return read;
}

const std::vector<db::TransponderName>& PlanSets::names() const {
    if (!names_) names_ = db::read_names(database_.connection(), plan_);
    return *names_;
}

const std::vector<db::Bookmark>& PlanSets::rows() const {
    static const std::vector<db::Bookmark> kNone;
    return programs_ ? programs_->rows() : kNone;
}

/// Moves `set` to the program of `known`, which has to be as the user has seen it.
void PlanSets::go_to_known(db::Recordset& set, const PlanRow& known) {
    if (!std::ranges::binary_search(set.rows(), known.row)) throw Fault(kRowsChanged);
    set.go_to(known.row);
    if (programme::read_program(set, kNoDiseqcChosen) != known.program) throw Fault(kRowsChanged);
}

/// Comes back to the program that was current, as it is in the file now, or to the first.
void PlanSets::come_back_to(std::optional<db::Bookmark> row) {
    crea_records(plan_);
    if (row && std::ranges::binary_search(programs_->rows(), *row)) programs_->go_to(*row);
}

int PlanSets::set_in_rows(const std::vector<PlanRow>& known,
                          const programme::ProgramField::Member& member, const QString& text,
                          double unit_offset) {
    int lines_given = 0;
    all_or_nothing([&] {
        need_plan();
        db::Recordset set = database_.of_plan(db::table::kProgrammi, plan_);
        std::vector<programme::ProgramRecord> all = programs();
        for (const PlanRow& row : known) {
            go_to_known(set, row);
            programme::ProgramRecord after = with_entry(row.program, member, text, unit_offset);
            if (needs_line(row.program, after)) {
                after.logger_pos = free_logger_position(all);
                if (after.logger_pos.isEmpty()) throw Fault(kNoLineLeft);
                all.push_back(after);
                ++lines_given;
            }
            if (after == row.program) continue;
            set.edit();
            recorder_.will_change(db::table::kProgrammi, set);
            write_differences(set, row.program, after);
            set.update();
        }
    });
    come_back_to(current_row());
    return lines_given;
}

void PlanSets::delete_rows(const std::vector<PlanRow>& known) {
    const std::optional<db::Bookmark> current = current_row();
    all_or_nothing([&] {
        need_plan();
        db::Recordset set = database_.of_plan(db::table::kProgrammi, plan_);
        if (static_cast<std::size_t>(set.count()) <= known.size()) throw Fault(kOneStays);
        for (const PlanRow& row : known) {
            go_to_known(set, row);
            recorder_.will_change(db::table::kProgrammi, set);
            set.remove();
        }
    });
    come_back_to(current);
}

void PlanSets::add_copies(const std::vector<PlanRow>& known) {
    if (known.empty()) return;
    std::optional<db::Bookmark> first;
    all_or_nothing([&] {
        need_plan();
        programs_->requery();
        std::vector<db::Bookmark> order = programs_->rows();
        std::vector<db::Bookmark> copies;
        for (const PlanRow& row : known) {
            go_to_known(*programs_, row);
            programme::ProgramRecord copy = row.program;
            make_own(copy, programs());
            copies.push_back(copy_current(copy));
        }
        order.insert(std::ranges::find(order, known.back().row) + 1, copies.begin(), copies.end());
        first = *std::next(programs_->rows().begin(),
                           std::ranges::find(order, copies.front()) - order.begin());
        write_order(order);
    });
    come_back_to(first);
}

/// The current program once more, behind the last one, with what `own` has otherwise.
db::Bookmark PlanSets::copy_current(const programme::ProgramRecord& own) {
    const db::Recordset from = *programs_;
    const programme::ProgramRecord before = programme::read_program(from, kNoDiseqcChosen);
    programs_->add_new();
    for (const db::Field& field : db::table_named(db::table::kProgrammi).fields) {
        const QString name = QString::fromLatin1(field.name);
        programs_->set(name, from.value(name));
    }
    write_differences(*programs_, before, own);
    programs_->update();
    recorder_.was_added(db::table::kProgrammi, programs_->last_added());
    return programs_->last_added();
}

/// Gives each row of the plan the program that `order` has in its place: the file keeps rows in the
/// order of their making.
void PlanSets::write_order(const std::vector<db::Bookmark>& order) {
    programs_->requery();
    const std::vector<db::Bookmark> places = programs_->rows();
    if (!std::ranges::is_permutation(order, places)) throw Fault(kRowsChanged);
    const QString table = QString::fromLatin1(db::table::kProgrammi);
    std::vector<std::optional<db::StoredRow>> contents;
    contents.reserve(order.size());
    for (const db::Bookmark row : order)
        contents.push_back(db::read_row(database_.connection(), table, row));
    for (std::size_t place = 0; place < places.size(); ++place) {
        if (order[place] == places[place]) continue;
        programs_->go_to(places[place]);
        recorder_.will_change(db::table::kProgrammi, *programs_);
        db::write_row(database_.connection(), table, places[place], contents[place]);
    }
}

void PlanSets::reorder(const std::vector<db::Bookmark>& order) {
    const std::optional<db::Bookmark> current = current_row();
    std::optional<db::Bookmark> follows;
    all_or_nothing([&] {
        need_plan();
        write_order(order);
        const auto place = current ? std::ranges::find(order, *current) : order.end();
        if (place != order.end()) follows = rows()[static_cast<std::size_t>(place - order.begin())];
    });
    come_back_to(follows);
}

}  // namespace m47::plans
