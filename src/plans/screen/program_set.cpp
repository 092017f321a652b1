// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_set.h"

#include <QApplication>
#include <QScopedValueRollback>

#include "busy_input.h"
#include "corrected_actions.h"
#include "plan_costs.h"
#include "plan_questions.h"
#include "plan_tooltips.h"
#include "ui_program_set.h"

namespace m47::plans {
namespace {

constexpr Bilingual kProgramGone{
    "Another program has deleted what was shown here. Nothing was stored; the screen shows what is "
    "there now.",
    "Un altro programma ha cancellato ciò che era mostrato qui. Nulla è stato memorizzato; la "
    "schermata mostra ciò che c'è ora."};
constexpr Caption kMenuCaptions[] = {
    {"cmdimport", {"&Import programs…", "&Importa programmi…"}},
    {"cmdexport", {"E&xport plan…", "E&sporta piano…"}},
    {"cmdcopyprog", {"&Copy program…", "&Copia programma…"}},
    {"cmdcopyplan", {"Copy &plan…", "Copia &piano…"}},
};
constexpr Bilingual kFrequenciesCorrected{"Frequencies corrected, programs: %1",
                                          "Frequenze corrette, programmi: %1"};

constexpr Bilingual kNoPlanBefore{
    "No plan comes before this one: \"Create New Plan\" makes another one.",
    "Nessun piano precede questo: \"Crea un nuovo piano di programmi\" ne crea un altro."};
constexpr Bilingual kNoPlanAfter{
    "No plan comes after this one: \"Create New Plan\" makes another one.",
    "Nessun piano segue questo: \"Crea un nuovo piano di programmi\" ne crea un altro."};
constexpr Bilingual kNoProgramBefore{
    "No program comes before this one: \"New Program\" adds one to the plan.",
    "Nessun programma precede questo: \"Crea un nuovo programma\" ne aggiunge uno al piano."};
constexpr Bilingual kNoProgramAfter{
    "No program comes after this one: \"New Program\" adds one to the plan.",
    "Nessun programma segue questo: \"Crea un nuovo programma\" ne aggiunge uno al piano."};
constexpr Bilingual kNoPlanYet{
    "Nothing was done: there is no plan. \"Create New Plan\" makes one.",
    "Nulla è stato fatto: non c'è alcun piano. \"Crea un nuovo piano di programmi\" ne crea uno."};
constexpr Bilingual kStored{"Program stored: %1", "Programma memorizzato: %1"};

/// The others stay in their places while `frame` is hidden.
void keep_place(QWidget* frame) {
    QSizePolicy place = frame->sizePolicy();
    place.setRetainSizeWhenHidden(true);
    frame->setSizePolicy(place);
}

}  // namespace

ProgramSet::ProgramSet(link::Link& link, ProgramState& program, db::Database& database,
                       QWidget* parent)
    : Screen(parent),
      beep([] { QApplication::beep(); }),
      link_(link),
      program_(program),
      sets_(database, program.corrected),
      ui_(std::make_unique<Ui::ProgramSet>()),
      boxes_(*ui_),
      table_(new PlanTableView(program.texts)) {
    ui_->setupUi(this);
    // These keys are words of the language, which a form cannot use as names.
    ui_->new_plan->setObjectName(QStringLiteral("new"));
    ui_->delete_plan->setObjectName(QStringLiteral("delete"));
    boxes_.join();
    // An upload goes through the programs: behind it another one stands in the boxes.
    keep_while_busy(this, false);
    sets_.on_checked = [this](const QStringList& numbers) {
        const QString list = numbers.join(QStringLiteral(", "));
        Q_EMIT upload_state(program_.texts.pick(kFrequenciesCorrected).arg(list), QString());
    };
    sets_.on_unchecked = [this] { tell_unchecked(program_); };
    keep_place(ui_->dig_opt);
    keep_place(ui_->monitor_opt);
    show_monitor(false);
    tie_corrected(this, program_.corrected);
    connect_boxes();
    connect_oscillators();
    connect_lists();
    connect_menu();
    fill_keys();
    put_table_beside();
    connect_table();
    connect_edit_menu();
    watch_edits();
    take_toolbar(ui_->barracomando);
    take_exit(ui_->cmdexit);
    guard_lists();
}

ProgramSet::~ProgramSet() {
    keep_table();
}

void ProgramSet::handle(const char* name, const std::function<void()>& body) {
    Screen::handle(name, [&] {
        try {
            body();
            follow_changes();
        } catch (const db::RecordGone&) {
            show_after_fault();
            tell_problem(this, program_.texts.pick(kProgramGone));
        } catch (const std::exception&) {
            show_after_fault();
            throw;
        }
    });
}

/// The program and the table as they are now; what fails with that is not told beside the fault.
void ProgramSet::show_after_fault() {
    show_current_row();
    table_is_old_ = true;
    try {
        follow_changes();
    } catch (const Fault&) {
        // The next handler brings the table into step.
    }
}

/// After a fault the boxes may hold another program than the one that would be overwritten next.
/// Where they hold that one, what was typed stays: storing again may be all that is needed.
void ProgramSet::show_current_row() {
    try {
        sets_.refresh();
    } catch (const Fault&) {
        // The file cannot be read just now: what was read last stays.
    }
    try {
        if (sets_.plan() == shown_plan_ && sets_.current_row() == shown_row_) return;
        move_plan(true);
    } catch (const Fault&) {
        // Without a current row nothing can be overwritten.
    }
}

void ProgramSet::Form_Load() {
    set_tooltips(this, plan_tooltips(), program_.texts);
    set_captions(this, kMenuCaptions, program_.texts);
    set_key_words(this, plan_key_words(), program_.texts);
    for (QAction* key : {ui_->store, ui_->previous_prog, ui_->next_prog})
        key->setText(key->toolTip());
    handle("Form_Load", [this] {
        boxes_.fill_lists();
        show_unit();
        sets_.first_plan();
        move_plan(true);
    });
}

void ProgramSet::Form_Activate() {
    show_unit();
    database_changed();
}

void ProgramSet::database_changed() {
    handle("database_changed", [this] {
        table_is_old_ = true;
        if (sets_.refresh()) move_plan(true);
    });
}

void ProgramSet::show_plan(const QString& name) {
    handle("show_plan", [this, &name] {
        if (!sets_.has_plan(name) || !may_leave()) return;
        sets_.crea_records(name);
        move_plan(true);
    });
}

void ProgramSet::fill_keys() {
    // "storing" is known and does nothing.
    add_key(ui_->previous, [this] { step_plan(&PlanSets::previous_plan, kNoPlanBefore); });
    add_key(ui_->next, [this] { step_plan(&PlanSets::next_plan, kNoPlanAfter); });
    add_key(ui_->new_plan, [this] { add_new(); });
    add_key(ui_->delete_plan, [this] { del_old(); });
    add_key(ui_->store_new, [this] { store_as_new(); });
    add_key(ui_->store, [this] {
        if (store_record(true) == Outcome::stored) tell({kStored, {sets_.program().pg_num}});
    });
    add_key(ui_->programma_delete, [this] { delete_program(); });
    add_key(ui_->previous_prog,
            [this] { step_program(&PlanSets::previous_program, kNoProgramBefore); });
    add_key(ui_->next_prog, [this] { step_program(&PlanSets::next_program, kNoProgramAfter); });
    add_key(ui_->accoda, [this] { download_group(ui_->accoda->toolTip(), kAppend); });
    add_key(ui_->sostituisci, [this] { download_group(ui_->sostituisci->toolTip(), kDisable); });
    add_key(ui_->nuovo, [this] { download_group(ui_->nuovo->toolTip(), kReplace); });
    add_key(ui_->monitor, [this] { show_monitor(ui_->monitor_opt->isHidden()); });
}

void ProgramSet::show_monitor(bool visible) {
    ui_->monitor_opt->setVisible(visible);
    ui_->monitor->setChecked(visible);
}

void ProgramSet::mostra_record() {
    keep_lost_edits();
    const QScopedValueRollback<bool> filling(showing_, true);
    load_oscloc();
    boxes_.show(sets_.program());
    shown_plan_ = sets_.plan();
    shown_row_ = sets_.current_row();
    known_ = sets_.stored();
    shown_ = boxed();
    typed_offset_.reset();
}

void ProgramSet::load_oscloc() {
    boxes_.load_oscloc(sets_.oscillators());
}

/// Shows the plan that has been moved to, or sounds the end of the list.
void ProgramSet::move_plan(bool moved) {
    if (!moved) beep();
    ui_->grp_name->setText(sets_.plan());
    mostra_record();
}

void ProgramSet::move_program(bool moved) {
    if (!moved) beep();
    mostra_record();
}

void ProgramSet::step_plan(bool (PlanSets::*go)(), const Bilingual& end) {
    if (!may_leave()) return;
    const bool moved = (sets_.*go)();
    move_plan(moved);
    if (!moved) tell_nothing_done(end);
}

void ProgramSet::step_program(bool (PlanSets::*go)(), const Bilingual& end) {
    if (!may_leave()) return;
    const bool moved = (sets_.*go)();
    move_program(moved);
    if (!moved) tell_nothing_done(end);
}

/// Without a plan that is the reason, whatever else may be.
void ProgramSet::tell_nothing_done(const Bilingual& why) {
    program_.costs.tell_each(sets_.plan().isEmpty() ? kNoPlanYet : why);
}

void ProgramSet::show_first_program() {
    sets_.first_program();
    mostra_record();
}

}  // namespace m47::plans
