// SPDX-License-Identifier: GPL-3.0-or-later
// What is stored over a program and its oscillator, and what of others goes with it.
#include <algorithm>
#include <utility>

#include "diseqc_commands.h"
#include "fields.h"
#include "numbers.h"
#include "plan_sets.h"
#include "program_checks.h"
#include "tables.h"

namespace m47::plans {

/// A plan that came without its oscillators gets a row for them.
void PlanSets::edit_configuration() {
    if (config_->empty()) {
        config_->add_new();
        config_->set(db::field::kNome, plan_);
        config_->update();
        recorder_.was_added(db::table::kConfigurazione, config_->last_added());
        config_->move_first();
    }
    config_->edit();
    recorder_.will_change(db::table::kConfigurazione, *config_);
}

void PlanSets::write_oscillator_entry(int index, const QString& oscillator) {
    const QString before = oscillators()[static_cast<std::size_t>(index)];
    edit_configuration();
    programme::write_oscillator(*config_, index, oscillator);
    config_->update();
    if (oscillator.trimmed().isEmpty() ||
        link::typed_value(before) == link::typed_value(oscillator))
        return;
    const std::vector<db::Bookmark> rows = out_of_range(index, oscillator);
    if (corrected_.check_all) return check_programs(rows, oscillator);
    const std::optional<db::Bookmark> shown = current_row();
    unchecked_ = std::ranges::any_of(rows, [&](db::Bookmark row) { return row != shown; });
}

/// The programs of the plan that are tuned through oscillator `index` at a frequency that
/// `oscillator` does not bring into the meter's range.
std::vector<db::Bookmark> PlanSets::out_of_range(int index, const QString& oscillator) const {
    std::vector<db::Bookmark> rows;
    db::Recordset set = database_.of_plan(db::table::kProgrammi, plan_);
    for (; !set.end_of_set(); set.move_next()) {
        const programme::ProgramRecord record = read(set);
        const bool uses_it =
            !record.loc_osc && programme::oscillator_entry(record.loc_osc0) == index;
        if (!uses_it || record.frequenza.isEmpty()) continue;
        const QString checked = stored_frequency(record.frequenza, false, oscillator);
        if (checked != record.frequenza) rows.push_back(set.bookmark());
    }
    return rows;
}

void PlanSets::check_programs(const std::vector<db::Bookmark>& rows, const QString& oscillator) {
    const std::optional<db::Bookmark> current = current_row();
    db::Recordset set = database_.of_plan(db::table::kProgrammi, plan_);
    for (const db::Bookmark row : rows) {
        set.go_to(row);
        const programme::ProgramRecord record = read(set);
        const QString checked = stored_frequency(record.frequenza, false, oscillator);
        set.edit();
        recorder_.will_change(db::table::kProgrammi, set);
        set.set(db::field::kFrequenza, link::typed_value(checked));
        set.update();
        checked_ += record.pg_num;
    }
    // As it is now in the file.
    if (current) programs_->go_to(*current);
}

void PlanSets::begin_checks() {
    checked_.clear();
    unchecked_ = false;
}

void PlanSets::tell_checked() {
    const QStringList numbers = std::exchange(checked_, {});
    if (!numbers.isEmpty() && on_checked) on_checked(numbers);
    if (std::exchange(unchecked_, false) && on_unchecked) on_unchecked();
}

/// Within a transaction, so that what is compared is what will be overwritten.
void PlanSets::need_known(const StoredProgram& known, const programme::ProgramRecord& record,
                          const QString& oscillator, bool over) {
    read_anew(over);
    need_unchanged(known, ChangedMeanwhile(stored(), record, oscillator, over));
}

void PlanSets::store_oscloc(int index, const QString& oscillator) {
    begin_checks();
    all_or_nothing([&] {
        need_plan();
        write_oscillator_entry(index, oscillator);
    });
    tell_checked();
}

void PlanSets::store_oscloc(const programme::ProgramRecord& record, const QString& oscillator,
                            StoredProgram& known) {
    begin_checks();
    StoredProgram after;
    all_or_nothing([&] {
        need_plan();
        need_known(known, record, oscillator, true);
        write_oscillator_entry(record.loc_osc0, oscillator);
        after = stored();
    });
    known = after;
    tell_checked();
}

void PlanSets::write_record(const programme::ProgramRecord& record, const QString& oscillator,
                            bool over) {
    write_oscillator_entry(record.loc_osc0, oscillator);
    if (over)
        programs_->edit();
    else
        programs_->add_new();
    write_open(record, over);
}

Clash PlanSets::store_record(programme::ProgramRecord& record, QString& oscillator,
                             std::optional<double> unit_offset, bool over,
                             const StoredProgram* known) {
    need_plan();
    begin_checks();
    if (corrected_.none_diseqc)
        for (int* command : {&record.diseqc_cmd, &record.diseqc_cmd2})
            if (*command < 0) *command = programme::kDiseqcNone;
    record.pg_num = checked_program_number(record.pg_num);
    std::optional<db::Bookmark> current;
    if (over) current = programs_->bookmark();
    if (!over) record.logger_pos.clear();
    Clash clash = Clash::none;
    // With the look at the others: no other program may take the number in between.
    all_or_nothing([&] {
        need_plan();
        const std::vector<programme::ProgramRecord> others = programs_of(plan_, current);
        clash = find_clash(others, record);
        if (clash != Clash::none) return;
        if (!over) record.logger_pos = next_logger_position(others);
        correct_fields(record, oscillator, unit_offset);
        if (known) need_known(*known, record, oscillator, over);
        write_record(record, oscillator, over);
    });
    tell_checked();
    return clash;
}

void PlanSets::write_oscillators(const programme::Oscillators& oscillators) {
    edit_configuration();
    for (std::size_t index = 0; index < oscillators.size(); ++index)
        programme::write_oscillator(*config_, static_cast<int>(index), oscillators[index]);
    config_->update();
}

}  // namespace m47::plans
