// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_sets.h"

#include <algorithm>
#include <utility>

#include "cut_text.h"
#include "database_transaction.h"
#include "diseqc_commands.h"
#include "fault.h"
#include "fields.h"
#include "numbers.h"
#include "program_checks.h"
#include "tables.h"
#include "tuning_range.h"

namespace m47 {
namespace {

constexpr qsizetype kNameLength = 10;
constexpr int kNoDiseqcChosen = -1;
constexpr Bilingual kPlanFilledMeanwhile{
    "Another program has stored programs in this plan meanwhile. Nothing was imported: choose the "
    "file again.",
    "Nel frattempo un altro programma ha memorizzato programmi in questo piano. Nulla è stato "
    "importato: scegliere di nuovo il file."};
constexpr Bilingual kNoPlanToStoreIn{"Nothing can be stored: there is no plan.",
                                     "Non si può memorizzare nulla: non c'è alcun piano."};

QString name_of(const char* table) {
    return QString::fromLatin1(table);
}

bool step_back(Recordset& set) {
    if (!set.begin_of_set()) set.move_previous();
    if (!set.begin_of_set()) return true;
    if (!set.empty()) set.move_first();
    return false;
}

bool step_on(Recordset& set) {
    if (!set.end_of_set()) set.move_next();
    if (!set.end_of_set()) return true;
    if (!set.empty()) set.move_last();
    return false;
}

}  // namespace

QString plan_name(const QString& text) {
    // A capital can take more room than its small letter.
    return cut_to(cut_to(text, kNameLength).trimmed().toUpper(), kNameLength).trimmed();
}

PlanSets::PlanSets(Database& database, const CorrectedBehaviour& corrected)
    : database_(database),
      corrected_(corrected),
      plans_(Recordset::table(database.connection(), name_of(table::kGruppo))) {
    first_plan();
}

void PlanSets::crea_records(const QString& plan) {
    const QString name = stored_plan_name(plan);
    Recordset programs = database_.of_plan(name_of(table::kProgrammi), name);
    Recordset config = database_.of_plan(name_of(table::kConfigurazione), name);
    // Only now nothing can fail any more: the programs of one plan never stand under another name.
    plan_ = name;
    programs_ = std::move(programs);
    config_ = std::move(config);
}

/// Makes the plan `name` the current row of the list of plans. False where it has none.
bool PlanSets::find_plan(const QString& name) {
    if (m47::find_plan(plans_, name)) return true;
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
    crea_records(plans_.empty() ? QString() : plans_.text(field::kNome));
}

bool PlanSets::previous_plan() {
    if (!requery_plans()) return has_current_plan();
    const bool moved = step_back(plans_);
    crea_records(plans_.text(field::kNome));
    return moved;
}

bool PlanSets::next_plan() {
    if (!requery_plans()) return has_current_plan();
    const bool moved = step_on(plans_);
    crea_records(plans_.text(field::kNome));
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

/// The oscillators of the plan, which its programs share, and the current program as well.
void PlanSets::read_anew(bool program) {
    config_->requery();
    if (program) programs_->go_to(programs_->bookmark());
}

ProgramRecord PlanSets::program() const {
    return current_row() ? read(*programs_) : ProgramRecord();
}

ProgramRecord PlanSets::read(const Recordset& set) const {
    return read_program(set, corrected_.none_diseqc ? kDiseqcNone : 0);
}

std::vector<ProgramRecord> PlanSets::programs() const {
    return programs_of(plan_, std::nullopt);
}

std::vector<ProgramRecord> PlanSets::programs_of(const QString& plan,
                                                 std::optional<Bookmark> without) const {
    std::vector<ProgramRecord> records;
    Recordset set = database_.of_plan(name_of(table::kProgrammi), plan);
    for (; !set.end_of_set(); set.move_next())
        if (set.bookmark() != without) records.push_back(read(set));
    return records;
}

Oscillators PlanSets::oscillators() const {
    return config_ && !config_->empty() ? read_oscillators(*config_) : Oscillators();
}

StoredProgram PlanSets::stored() const {
    return {has_program() ? read_program(*programs_, kNoDiseqcChosen) : ProgramRecord(),
            oscillators()};
}

bool PlanSets::has_unset_diseqc() const {
    Recordset set = database_.of_plan(name_of(table::kProgrammi), plan_);
    for (; !set.end_of_set(); set.move_next())
        if (!is_blank(read(set)) && read_program(set, kNoDiseqcChosen).diseqc_cmd < 0) return true;
    return false;
}

Oscillators PlanSets::oscillators_of(const QString& plan) const {
    const Recordset config = database_.of_plan(name_of(table::kConfigurazione), plan);
    return config.empty() ? Oscillators() : read_oscillators(config);
}

bool PlanSets::has_current_plan() const {
    return !plan_.isEmpty() && has_plan(plan_);
}

bool PlanSets::has_plan(const QString& name) const {
    return !database_.of_plan(name_of(table::kGruppo), name).empty();
}

/// Without its plan a row would be kept where nobody can see or delete it.
void PlanSets::need_plan() const {
    if (!has_current_plan()) throw Fault(kNoPlanToStoreIn);
}

std::optional<Bookmark> PlanSets::current_row() const {
    // After a move that failed halfway the set may stand beside its rows.
    if (!programs_ || !programs_->has_current()) return std::nullopt;
    return programs_->bookmark();
}

/// Reads anew what a failed change may have left behind in the sets, and comes back to the program
/// that was current.
void PlanSets::reopen(std::optional<Bookmark> current) {
    show_plan(plan_);
    if (!current || !has_program()) return;
    while (!programs_->end_of_set() && programs_->bookmark() != *current) programs_->move_next();
    if (programs_->end_of_set()) programs_->move_first();
}

bool PlanSets::refresh() {
    const QString plan = plan_;
    const ProgramRecord record = program();
    const Oscillators known = oscillators();
    const std::optional<Bookmark> current = current_row();
    if (requery_plans()) reopen(current);
    return plan_ != plan || program() != record || oscillators() != known;
}

void PlanSets::all_or_nothing(const std::function<void()>& body) {
    const QString plan = plan_;
    const std::optional<Bookmark> current = current_row();
    try {
        DatabaseTransaction transaction(database_.connection());
        body();
        transaction.commit();
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
    for (const char* table : {table::kGruppo, table::kProgrammi, table::kConfigurazione}) {
        Recordset set = database_.of_plan(name_of(table), name);
        set.add_new();
        set.set(field::kNome, name);
        set.update();
    }
}

void PlanSets::add_new(const QString& name) {
    if (!has_plan(name)) all_or_nothing([&] { add_rows(name); });
    show_plan(name);
}

bool PlanSets::can_delete_plan() const {
    QStringList names;
    Recordset plans = Recordset::table(database_.connection(), name_of(table::kGruppo));
    for (; !plans.end_of_set(); plans.move_next())
        names += stored_plan_name(plans.text(field::kNome));
    return names.contains(plan_) && names.count(plan_) < names.size() && !plan_.isEmpty();
}

void PlanSets::del_old() {
    if (!can_delete_plan()) return;
    all_or_nothing([this] {
        for (const char* table : {table::kGruppo, table::kConfigurazione, table::kProgrammi}) {
            Recordset set = database_.of_plan(name_of(table), plan_);
            while (!set.empty()) {
                set.move_first();
                set.remove();
            }
        }
    });
    plans_.requery();
    first_plan();
}

bool PlanSets::can_delete_program() const {
    // As the file holds them now: others delete programs too.
    return database_.of_plan(name_of(table::kProgrammi), plan_).count() > 1;
}

void PlanSets::delete_program() {
    if (!can_delete_program()) return;
    all_or_nothing([this] { programs_->remove(); });
    crea_records(plan_);
}

/// A plan that came without its oscillators gets a row for them.
void PlanSets::edit_configuration() {
    if (config_->empty()) {
        config_->add_new();
        config_->set(field::kNome, plan_);
        config_->update();
        config_->move_first();
    }
    config_->edit();
}

void PlanSets::write_oscillator_entry(int index, const QString& oscillator) {
    const QString before = oscillators()[static_cast<std::size_t>(index)];
    edit_configuration();
    write_oscillator(*config_, index, oscillator);
    config_->update();
    if (oscillator.trimmed().isEmpty() || typed_value(before) == typed_value(oscillator)) return;
    const std::vector<Bookmark> rows = out_of_range(index, oscillator);
    if (corrected_.check_all) return check_programs(rows, oscillator);
    const std::optional<Bookmark> shown = current_row();
    unchecked_ = std::ranges::any_of(rows, [&](Bookmark row) { return row != shown; });
}

/// The programs of the plan that are tuned through oscillator `index` at a frequency that
/// `oscillator` does not bring into the meter's range.
std::vector<Bookmark> PlanSets::out_of_range(int index, const QString& oscillator) const {
    std::vector<Bookmark> rows;
    Recordset set = database_.of_plan(name_of(table::kProgrammi), plan_);
    for (; !set.end_of_set(); set.move_next()) {
        const ProgramRecord record = read(set);
        const bool uses_it = !record.loc_osc && oscillator_entry(record.loc_osc0) == index;
        if (!uses_it || record.frequenza.isEmpty()) continue;
        const QString checked = stored_frequency(record.frequenza, false, oscillator);
        if (checked != record.frequenza) rows.push_back(set.bookmark());
    }
    return rows;
}

void PlanSets::check_programs(const std::vector<Bookmark>& rows, const QString& oscillator) {
    const std::optional<Bookmark> current = current_row();
    Recordset set = database_.of_plan(name_of(table::kProgrammi), plan_);
    for (const Bookmark row : rows) {
        set.go_to(row);
        const ProgramRecord record = read(set);
        const QString checked = stored_frequency(record.frequenza, false, oscillator);
        set.edit();
        set.set(field::kFrequenza, typed_value(checked));
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
void PlanSets::need_known(const StoredProgram& known, const ProgramRecord& record,
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

void PlanSets::store_oscloc(const ProgramRecord& record, const QString& oscillator,
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

void PlanSets::write_record(const ProgramRecord& record, const QString& oscillator, bool over) {
    write_oscillator_entry(record.loc_osc0, oscillator);
    if (over)
        programs_->edit();
    else
        programs_->add_new();
    programs_->set(field::kNome, plan_);
    write_program(*programs_, record);
    programs_->update();
}

Clash PlanSets::store_record(ProgramRecord& record, QString& oscillator,
                             std::optional<double> unit_offset, bool over,
                             const StoredProgram* known) {
    need_plan();
    begin_checks();
    if (corrected_.none_diseqc)
        for (int* command : {&record.diseqc_cmd, &record.diseqc_cmd2})
            if (*command < 0) *command = kDiseqcNone;
    record.pg_num = checked_program_number(record.pg_num);
    std::optional<Bookmark> current;
    if (over) current = programs_->bookmark();
    if (!over) record.logger_pos.clear();
    Clash clash = Clash::none;
    // With the look at the others: no other program may take the number in between.
    all_or_nothing([&] {
        need_plan();
        const std::vector<ProgramRecord> others = programs_of(plan_, current);
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

void PlanSets::write_oscillators(const Oscillators& oscillators) {
    edit_configuration();
    for (std::size_t index = 0; index < oscillators.size(); ++index)
        write_oscillator(*config_, static_cast<int>(index), oscillators[index]);
    config_->update();
}

/// Others may have filled the plan since the user has looked at what is to come.
void PlanSets::need_room_for(const ImportPreview& import) {
    programs_->requery();
    config_->requery();
    std::vector<ProgramRecord> others = programs();
    if (import.replaces_blank) std::erase_if(others, is_blank);
    for (const ImportRow& row : import.rows)
        if (row.added() && find_clash(others, row.record) != Clash::none)
            throw Fault(kPlanFilledMeanwhile);
    if (import.replaces_blank && !others.empty()) throw Fault(kPlanFilledMeanwhile);
}

void PlanSets::apply_import(const ImportPreview& import) {
    all_or_nothing([&] {
        need_plan();
        need_room_for(import);
        if (import.replaces_blank) {
            programs_->move_first();
            programs_->remove();
        }
        for (const ImportRow& row : import.rows) {
            if (!row.added()) continue;
            programs_->add_new();
            programs_->set(field::kNome, plan_);
            write_program(*programs_, row.record);
            programs_->update();
        }
        if (import.oscillators != oscillators()) write_oscillators(import.oscillators);
    });
    crea_records(plan_);
}

}  // namespace m47
