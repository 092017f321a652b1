// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "corrected_behaviour.h"
#include "database.h"
#include "plan_change.h"
#include "plan_clashes.h"
#include "plan_import.h"
#include "plan_rows.h"
#include "program_record.h"
#include "stored_program.h"
#include "transponder_names.h"

namespace m47::plans {

/// Every behaviour as it always was.
inline const CorrectedBehaviour kNothingCorrected;

struct ProgramCopy;

/// The plans of the database and the one that is being worked on. Every change comes true as a
/// whole or, with a Fault, not at all.
class PlanSets {
  public:
    /// `corrected` may change meanwhile and has to outlive this object.
    explicit PlanSets(db::Database& database,
                      const CorrectedBehaviour& corrected = kNothingCorrected);

    /// Told the numbers of the programs whose frequency a new oscillator has changed.
    std::function<void(const QStringList& numbers)> on_checked;
    /// Told where a new oscillator leaves programs out of its range that are not on the screen.
    std::function<void()> on_unchecked;

    /// The current plan's name; empty where the database has no plan.
    const QString& plan() const { return plan_; }

    /// Makes `plan` the current one and moves to its first program.
    void crea_records(const QString& plan);

    // To another plan or program. At the end of the list the last one stays and the answer is
    // false.
    void first_plan();
    bool previous_plan();
    bool next_plan();
    void first_program();
    bool previous_program();
    bool next_program();
    void last_program();

    /// Makes `plan` current, in the list of plans as well. RecordGone where it is not there.
    void open_plan(const QString& plan);
    /// To the program of that row. A Fault where the plan has none such, RecordGone where another
    /// program has deleted it.
    void go_to(db::Bookmark row);

    /// Reads anew what others have written to the file. The current plan and program stay where
    /// they are still there; else the first ones become current. True where the current program,
    /// its oscillators or its plan are not what they were.
    bool refresh();

    /// False where the database has no plan, or another program has deleted the current one.
    /// Nothing can be stored then.
    bool has_current_plan() const;
    /// The row of the current program; nothing where the plan has none.
    std::optional<db::Bookmark> current_row() const;
    bool has_program() const { return programs_ && !programs_->empty(); }
    /// The current program, a blank one where the plan has none.
    programme::ProgramRecord program() const;
    /// All programs of the plan.
    std::vector<programme::ProgramRecord> programs() const;
    /// Of the plan.
    programme::Oscillators oscillators() const;
    /// What was read last of the current program and the plan's oscillators.
    StoredProgram stored() const;
    /// True where a program of the plan that holds something has no DiSEqC command chosen.
    bool has_unset_diseqc() const;

    bool has_plan(const QString& name) const;

    /// Makes the plan `name` with one blank program, unless there is one, and makes it current.
    void add_new(const QString& name);
    /// The last plan cannot be deleted.
    bool can_delete_plan() const;
    /// Deletes the current plan and moves to the first one. False, and nothing is deleted, where it
    /// is the last one by then. With `seen`, what another program has changed since is not deleted:
    /// RemovalChanged.
    bool del_old(const RemovedRows* seen = nullptr);
    /// What is deleted with the plan as the user knows it, who saw `known` of the current program:
    /// the rows that have been read by now.
    RemovedRows seen_plan(const StoredProgram& known) const;
    /// The last program of a plan cannot be deleted.
    bool can_delete_program() const;
    /// Deletes the current program and moves to the first one. False and `seen` as for del_old.
    bool delete_program(const RemovedRows* seen = nullptr);
    /// The current program as the user saw it.
    RemovedRows seen_program(const StoredProgram& known) const;

    /// Sets oscillator `index` (0 to 3) of the plan; an empty text is none. Where the user wants
    /// it, the frequencies of all programs that use it are checked against it. `known` as for
    /// store_record, of `record`, the current program as it is to be stored next.
    void store_oscloc(int index, const QString& oscillator);
    void store_oscloc(const programme::ProgramRecord& record, const QString& oscillator,
                      StoredProgram& known);

    /// Stores `record` with its oscillator `oscillator` over the current program (`over`) or as a
    /// new one behind the last. Both come back as corrected. Where it clashes with another program
    /// of the plan, only the number has been corrected and nothing is stored. `unit_offset` as for
    /// correct_limits. With `known`, what the user has seen of the current program, a change by
    /// another program is not overwritten: ChangedMeanwhile, and nothing is stored.
    Clash store_record(programme::ProgramRecord& record, QString& oscillator,
                       std::optional<double> unit_offset, bool over,
                       const StoredProgram* known = nullptr);

    /// Adds what `import` says to the current plan and replaces in it what it says. A Fault where
    /// the plan is no longer as it was when `import` was made.
    void apply_import(const ImportPreview& import);

    /// Makes the plan `name` as a copy of the current one, and makes it current. False, and nothing
    /// is copied, where there is such a plan.
    bool copy_plan(const QString& name);

    /// Copies the current program as it is stored into the plan `name`, which is made where it does
    /// not exist, and makes that plan current. A number or logger position that is taken there is
    /// replaced by a free one, and its oscillator takes a free place. Where the plan has no room
    /// the answer says why and nothing is changed.
    ImportProblem copy_program(const QString& name);

    /// Those of `rows` that are still there, as they are in the file.
    std::vector<PlanRow> read_rows(const std::vector<db::Bookmark>& rows) const;
    /// What its transponders are called in the files they were imported from.
    const std::vector<db::TransponderName>& names() const;
    /// The rows of the plan's programs, in its order.
    const std::vector<db::Bookmark>& rows() const;

    // What is done to many programs of the plan at once, to all or to none. A Fault, which says why
    // in one sentence, where one of them is not as the user has seen it (`known`).

    /// Puts `text` into `member` of all as with_entry() does. A program that becomes active in the
    /// logger gets a line of its table where it has none; how many did.
    int set_in_rows(const std::vector<PlanRow>& known,
                    const programme::ProgramField::Member& member, const QString& text,
                    double unit_offset);
    /// One program stays.
    void delete_rows(const std::vector<PlanRow>& known);
    /// Adds a copy of each behind the last of `known`, with a free number and the next line of the
    /// logger table, and moves to the first copy.
    void add_copies(const std::vector<PlanRow>& known);
    /// Brings the programs into the order in which `order` names their rows. The current one stays
    /// current, in its new place.
    void reorder(const std::vector<db::Bookmark>& order);

    /// What has been changed in the file since the last call, a change for each deed.
    std::vector<PlanChange> take_changes() { return std::exchange(changes_, {}); }
    /// Takes `change` back or makes it again in the file; show_changed() is to follow.
    /// ChangeRefused, and nothing is changed, where the file does not hold what the change has left
    /// there, or where a number or a logger line that comes back is taken.
    void replay(const PlanChange& change, Direction direction);
    /// Makes current what `change` concerns.
    void show_changed(const PlanChange& change, Direction direction);

  private:
    void keep_names(const ImportPreview& import);
    void all_or_nothing(const std::function<void()>& body);
    bool find_plan(const QString& name);
    bool requery_plans();
    void need_plan() const;
    void read_anew(bool program);
    void need_known(const StoredProgram& known, const programme::ProgramRecord& record,
                    const QString& oscillator, bool over);
    void write_record(const programme::ProgramRecord& record, const QString& oscillator, bool over);
    void edit_configuration();
    programme::ProgramRecord read(const db::Recordset& set) const;
    void write_oscillator_entry(int index, const QString& oscillator);
    std::vector<db::Bookmark> out_of_range(int index, const QString& oscillator) const;
    void check_programs(const std::vector<db::Bookmark>& rows, const QString& oscillator);
    void need_room_for(const ImportPreview& import);
    void open_row_for(const ImportRow& row);
    void go_to_known(db::Recordset& set, const PlanRow& known);
    void come_back_to(std::optional<db::Bookmark> row);
    db::Bookmark copy_current(const programme::ProgramRecord& own);
    void write_order(const std::vector<db::Bookmark>& order);
    void remove_current();
    void write_open(const programme::ProgramRecord& record, bool over);
    void need_as_left(const PlanChange& change, Direction direction);
    void need_whole_plan(const PlanChange& change, Direction direction);
    void begin_checks();
    void tell_checked();
    void reopen(std::optional<db::Bookmark> current);
    void show_plan(const QString& name);
    void add_rows(const QString& name);
    void write_oscillators(const programme::Oscillators& oscillators);
    programme::Oscillators oscillators_of(const QString& plan) const;
    RemovedRows rows_of(db::Recordset set) const;
    ImportProblem fit_copy(const QString& name, ProgramCopy& copy) const;
    void write_copy(const QString& name, const ProgramCopy& copy);
    std::vector<programme::ProgramRecord> programs_of(const QString& plan,
                                                      std::optional<db::Bookmark> without) const;

    db::Database& database_;
    const CorrectedBehaviour& corrected_;
    QStringList checked_;
    bool unchecked_ = false;
    /// Of the current plan, once they have been asked for.
    mutable std::optional<std::vector<db::TransponderName>> names_;
    ChangeRecorder recorder_;
    std::vector<PlanChange> changes_;
    db::Recordset plans_;
    std::optional<db::Recordset> programs_;
    std::optional<db::Recordset> config_;
    QString plan_;
};

}  // namespace m47::plans
