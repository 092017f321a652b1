// SPDX-License-Identifier: GPL-3.0-or-later
// Copies of programs and plans: the rows as they are stored, whatever they hold. A copy is no entry
// of the user's, so nothing in it is corrected.
#include <algorithm>

#include "database_transaction.h"
#include "fields.h"
#include "numbers.h"
#include "plan_sets.h"
#include "program_checks.h"
#include "tables.h"
#include "used_numbers.h"

namespace m47::plans {
namespace {

/// Fields that the copy of a row has of its own.
using OwnFields = QMap<QString, QVariant>;

void copy_row(const db::Recordset& from, db::Recordset& to, const char* table,
              const OwnFields& own) {
    to.add_new();
    for (const db::Field& field : db::table_named(QString::fromLatin1(table)).fields) {
        const QString key = QString::fromLatin1(field.name);
        to.set(key, own.contains(key) ? own.value(key) : from.value(key));
    }
    to.update();
}

}  // namespace

/// What a program's copy has of its own, and the oscillators of the plan it comes into.
struct ProgramCopy {
    OwnFields own;
    programme::Oscillators oscillators;
    bool replaces_blank = false;
};

namespace {

void find_number_and_line(const std::vector<programme::ProgramRecord>& others,
                          programme::ProgramRecord& record, OwnFields& own) {
    if (find_clash(others, record) == Clash::number) {
        UsedNumbers used;
        for (const programme::ProgramRecord& other : others) used.take(other);
        record.pg_num = used.first_free();
        own[db::field::kPgNum] = record.pg_num;
    }
    if (find_clash(others, record) != Clash::logger_position) return;
    record.logger_pos = next_logger_position(others);
    own[db::field::kLoggerPos] = record.logger_pos;
    // Without a line it cannot be active in the table.
    if (record.logger_pos.isEmpty()) own[db::field::kLoggerState] = 0;
}

ImportProblem find_oscillator(const programme::ProgramRecord& record,
                              const programme::Oscillators& known, ProgramCopy& copy) {
    const std::size_t entry = programme::oscillator_entry(record);
    if (record.loc_osc || known[entry].isEmpty()) return ImportProblem::none;
    const auto place =
        programme::place_oscillator(copy.oscillators, static_cast<int>(entry), known[entry]);
    if (!place) return ImportProblem::no_oscillator;
    copy.own[db::field::kLocOsc0] = *place;
    return ImportProblem::none;
}

}  // namespace

bool PlanSets::copy_plan(const QString& name) {
    bool copied = false;
    all_or_nothing([&] {
        need_plan();
        if (has_plan(name)) return;
        for (const char* table :
             {db::table::kGruppo, db::table::kConfigurazione, db::table::kProgrammi}) {
            db::Recordset from = database_.of_plan(QString::fromLatin1(table), plan_);
            db::Recordset to = database_.of_plan(QString::fromLatin1(table), name);
            for (; !from.end_of_set(); from.move_next()) {
                copy_row(from, to, table, {{db::field::kNome, name}});
                recorder_.was_added(table, to.last_added());
            }
        }
        db::forget_names(database_.connection(), name);
        db::write_names(database_.connection(), name, names());
        recorder_.concerns(name);
        copied = true;
    });
    if (copied) show_plan(name);
    return copied;
}

ImportProblem PlanSets::copy_program(const QString& name) {
    ImportProblem problem = ImportProblem::none;
    // With the look at the other plan: nobody else may take the number or the oscillator between.
    all_or_nothing([&] {
        need_plan();
        read_anew(true);
        ProgramCopy copy;
        problem = fit_copy(name, copy);
        if (problem == ImportProblem::none) write_copy(name, copy);
    });
    if (problem != ImportProblem::none) return problem;
    show_plan(name);
    last_program();
    return ImportProblem::none;
}

ImportProblem PlanSets::fit_copy(const QString& name, ProgramCopy& copy) const {
    programme::ProgramRecord record = program();
    std::vector<programme::ProgramRecord> others = programs_of(name, std::nullopt);
    copy = {.own = {{db::field::kNome, name}}, .oscillators = oscillators_of(name)};
    // The program that a new plan starts with makes room, unless it is the one to be copied.
    copy.replaces_blank =
        name != plan_ && others.size() == 1 && programme::is_blank(others.front());
    if (copy.replaces_blank) others.clear();
    find_number_and_line(others, record, copy.own);
    if (record.pg_num.isEmpty() && !program().pg_num.isEmpty()) return ImportProblem::no_number;
    return find_oscillator(record, oscillators(), copy);
}

void PlanSets::write_copy(const QString& name, const ProgramCopy& copy) {
    const db::Recordset from = *programs_;
    const bool is_new = !has_plan(name);
    const programme::ProgramRecord record = program();
    const double mhz = link::typed_value(record.frequenza);
    const db::TransponderName called{mhz, record.lnb_volt,
                                     db::name_of(names(), mhz, record.lnb_volt),
                                     db::code_of(names(), mhz, record.lnb_volt)};
    if (is_new) add_rows(name);
    if (is_new) db::forget_names(database_.connection(), name);
    db::write_names(database_.connection(), name, {called});
    crea_records(name);
    recorder_.concerns(name);
    if (is_new || copy.replaces_blank) remove_current();
    copy_row(from, *programs_, db::table::kProgrammi, copy.own);
    recorder_.was_added(db::table::kProgrammi, programs_->last_added());
    if (copy.oscillators != oscillators()) write_oscillators(copy.oscillators);
}

}  // namespace m47::plans
