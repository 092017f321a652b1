// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "edits_bar.h"
#include "link.h"
#include "plan_boxes.h"
#include "plan_edit_menu.h"
#include "plan_file.h"
#include "plan_history.h"
#include "plan_sets.h"
#include "plan_table_view.h"
#include "plan_upload.h"
#include "program_state.h"
#include "record_edits.h"
#include "recordset.h"
#include "screen.h"

namespace Ui {
class ProgramSet;
}

namespace m47::plans {

/// The screen "Plan Setup": plans and their programs, and their upload to the meter.
class ProgramSet : public Screen {
    Q_OBJECT
  public:
    ProgramSet(link::Link& link, ProgramState& program, db::Database& database,
               QWidget* parent = nullptr);
    ~ProgramSet() override;

    /// The sound of a refusal and of an end of the list.
    std::function<void()> beep;

    /// Fills the lists and shows the first program of the first plan.
    void Form_Load() override;
    /// Each time the screen comes to the front: the level unit may have changed elsewhere.
    void Form_Activate() override;

    /// Something else has written plans into the database file. What the user is typing stays where
    /// its program is still the same.
    void database_changed();

    /// False where the user wants to stay for the edits in the boxes, as the choice is.
    bool may_be_left() override;

    /// Offers `programs` to the plan on the screen, as an import of a file does.
    void offer_programs(const std::vector<ImportCandidate>& programs);

    /// Shows the plan `name` at its first program; what there is stays where it has been deleted.
    void show_plan(const QString& name);

  Q_SIGNALS:
    /// How far an upload is, what became of it, and what else is not worth a box.
    void upload_state(const QString& text, const QString& tooltip);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void handle(const char* name, const std::function<void()>& body) override;
    void show_current_row();
    void show_after_fault();
    void connect_boxes();
    void connect_oscillators();
    void connect_lists();
    void connect_menu();
    void fill_keys();
    double offset() const;
    std::optional<double> offset_of_limits(const programme::ProgramRecord& record) const;

    // Plans and programs
    bool lacks_plan();
    bool lacks_program();
    void mostra_record();
    void show_first_program();
    /// What became of a store: refused for a clash, or given up where another program had changed
    /// the same, for what is stored now or to go on typing.
    enum class Outcome { stored, clash, kept_theirs, put_off };
    Outcome store_record(bool over);
    Clash try_to_store(programme::ProgramRecord& record, bool over);
    Outcome unless_changed(const std::function<Outcome()>& store);
    bool store_for_upload();
    UploadPlan plan_to_upload() const;
    void store_as_new();
    void add_new();
    void del_old();
    void delete_program();
    bool remove_seen(RemovedRows seen, const Bilingual& last_one,
                     const std::function<bool(const RemovedRows&)>& remove);
    void move_plan(bool moved);
    void move_program(bool moved);
    // Keys that find nothing to do say why, and what helps.
    void step_plan(bool (PlanSets::*go)(), const Bilingual& end);
    void step_program(bool (PlanSets::*go)(), const Bilingual& end);
    void tell_nothing_done(const Bilingual& why);

    // Fields
    void check_prog_num();
    void sat_freq_KeyPress();
    void ol_optval_KeyPress();
    void cmdlev_Click(int index);
    void show_unit();
    void load_oscloc();
    void show_monitor(bool visible);

    // Table of programs
    void put_table_beside();
    void connect_table();
    void connect_edit_menu();
    void restore_table();
    void keep_table() const;
    void follow_changes();
    void refresh_record(bool same_program);
    void recall(db::Bookmark row);
    void enter_in_rows(const std::vector<PlanRow>& rows,
                       const programme::ProgramField::Member& member, const QString& text);
    void copy_rows();
    void paste_rows();
    void import_file(const ImportFile& file);
    void take_in(const ImportPreview& preview);
    void refuse_paste(int line, ImportProblem problem);
    void insert_rows();
    void delete_rows();
    void move_rows(bool up);
    void keep_order();
    void reorder(const std::vector<db::Bookmark>& order);
    void step(Direction direction);
    void tell(const Said& what);

    // Edits that are not stored
    struct LostEdits;
    BoxedProgram boxed();
    bool has_edits();
    void take_as_stored();
    void keep_lost_edits();
    void offer_lost_edits();
    void forget_lost_edits();
    void put_back();
    db::Bookmark row_of(const LostEdits& edits);
    void show_typed(const BoxedProgram& typed);
    void watch_edits();
    void mark_edits();
    bool may_leave();

    // Upload
    void download_group(const QString& prompt, UploadMode mode);
    bool agrees(const QString& prompt, UploadMode mode, PlanUpload& upload);
    void verify_upload(PlanUpload& upload, UploadMode mode, const QString& before);

    // Menu
    void cmdimport_Click();
    void cmdexport_Click();
    void cmdcopyprog_Click();
    void cmdcopyplan_Click();
    QString ask_file(bool save, const QStringList& filters);

    link::Link& link_;
    ProgramState& program_;
    PlanSets sets_;
    std::unique_ptr<Ui::ProgramSet> ui_;
    PlanBoxes boxes_;
    /// The plan and the row of the program in the boxes.
    QString shown_plan_;
    std::optional<db::Bookmark> shown_row_;
    /// That program as it was shown, before anybody typed.
    BoxedProgram shown_;
    /// What the file held then: a store does not overwrite what another program has written since.
    StoredProgram known_;
    /// Of the unit in which the level limits have been typed since then.
    std::optional<double> typed_offset_;
    /// Edits of a program that has been left, to be put back on request.
    struct LostEdits {
        QString plan;
        db::Bookmark row;
        BoxedProgram typed;
        BoxedProgram shown;  ///< before that
        StoredProgram known;
        std::optional<double> typed_offset;
        bool refused_new;
    };
    std::optional<LostEdits> lost_;
    bool refused_new_ = false;
    PlanTableView* table_;
    QAction* show_table_ = nullptr;
    /// The user has folded the table or opened it: it stays so in a window of any width.
    bool table_chosen_ = false;
    /// Record and table, and below them what is offered back.
    QLayout* below_ = nullptr;
    EditsBar* edits_bar_ = nullptr;
    std::unique_ptr<PlanHistory> history_;
    /// Others may have changed any row of the table.
    bool table_is_old_ = false;
    /// The boxes are being filled: what stands in them belongs to no one program yet.
    bool showing_ = false;
    /// They call this screen and go before its controls, one of which may lose the focus by going.
    std::vector<std::unique_ptr<QObject>> filters_;
};

}  // namespace m47::plans
