// SPDX-License-Identifier: GPL-3.0-or-later
// The table of programs beside the record: what is done in it, and how both are kept in step.
#include <QClipboard>
#include <QGuiApplication>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "diseqc_commands.h"
#include "plan_clip.h"
#include "plan_questions.h"
#include "program_set.h"
#include "record_area.h"
#include "tables.h"
#include "ui_program_set.h"

namespace m47::plans {
namespace {

constexpr Bilingual kLinesGiven{"Lines of the logger table given: %1",
                                "Righe del datalogger assegnate: %1"};
constexpr Bilingual kCopied{"Rows copied: %1", "Righe copiate: %1"};
constexpr Bilingual kPasted{"Programs added: %1, replaced: %2",
                            "Programmi aggiunti: %1, sostituiti: %2"};
constexpr Bilingual kPlanOrderShown{"The order of the plan is shown again: move the rows in it",
                                    "È di nuovo mostrato l'ordine del piano: spostare le righe in "
                                    "esso"};
constexpr Bilingual kUndone{"Undone: %1", "Annullato: %1"};
constexpr Bilingual kRedone{"Done again: %1", "Ripetuto: %1"};
constexpr Bilingual kNothingToPaste{"The clipboard holds no programs. Nothing was pasted.",
                                    "Gli appunti non contengono programmi. Nulla è stato "
                                    "incollato."};
constexpr Bilingual kRefusedPaste{"Row %1 cannot be pasted: %2 Nothing was pasted.",
                                  "La riga %1 non può essere incollata: %2 Nulla è stato "
                                  "incollato."};
constexpr Bilingual kNoSelection{"Select rows of the table first.",
                                 "Selezionare prima delle righe della tabella."};

/// Of characters: number, frequency and polarisation are then to be seen.
constexpr int kLeastColumns = 24;

/// More numbers than these say nothing to anybody.
constexpr qsizetype kNumbersTold = 8;

QString numbers_of(const std::vector<PlanRow>& rows) {
    QStringList numbers;
    for (const PlanRow& row : rows) numbers += row.program.pg_num;
    const qsizetype count = numbers.size();
    if (count <= kNumbersTold) return numbers.join(QStringLiteral(", "));
    return numbers.first(kNumbersTold).join(QStringLiteral(", ")) +
           QStringLiteral(", … (%1)").arg(count);
}

bool holds(const std::vector<PlanRow>& rows, std::optional<db::Bookmark> row) {
    return row && std::ranges::find(rows, *row, &PlanRow::row) != rows.end();
}

}  // namespace

/// Below them is room for what is offered back.
void ProgramSet::put_table_beside() {
    auto* splitter = new QSplitter;
    splitter->setObjectName(QStringLiteral("plan_splitter"));
    auto* whole = new QWidget;
    auto* layout = new QVBoxLayout(whole);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter, 1);
    below_ = layout;
    splitter->addWidget(new RecordArea(takeCentralWidget()));
    splitter->addWidget(table_);
    splitter->setCollapsible(0, false);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    setCentralWidget(whole);
}

void ProgramSet::connect_table() {
    when(table_, &PlanTableView::recalled, "plan_table_Click", [this](qint64 row) { recall(row); });
    connect(table_, &PlanTableView::entered, this,
            [this](const std::vector<PlanRow>& rows, const programme::ProgramField::Member& member,
                   const QString& text) {
                handle("plan_table_Entry", [&] { enter_in_rows(rows, member, text); });
            });
}

void ProgramSet::connect_edit_menu() {
    const PlanEditMenu menu(ui_->menubar, table_, program_.texts);
    history_ = std::make_unique<PlanHistory>(menu.undo, menu.redo, program_.texts);
    const auto entry = [this](QAction* action, const char* name, auto work) {
        when(action, &QAction::triggered, name, [work] { work(); });
    };
    entry(menu.undo, "cmdundo_Click", [this] { step(Direction::back); });
    entry(menu.redo, "cmdredo_Click", [this] { step(Direction::forth); });
    entry(menu.copy_rows, "cmdcopyrows_Click", [this] { copy_rows(); });
    entry(menu.paste_rows, "cmdpasterows_Click", [this] { paste_rows(); });
    entry(menu.insert_rows, "cmdinsertrows_Click", [this] { insert_rows(); });
    entry(menu.delete_rows, "cmddeleterows_Click", [this] { delete_rows(); });
    entry(menu.row_up, "cmdrowup_Click", [this] { move_rows(true); });
    entry(menu.row_down, "cmdrowdown_Click", [this] { move_rows(false); });
    entry(menu.keep_order, "cmdkeeporder_Click", [this] { keep_order(); });
    show_table_ = menu.show_table;
    connect(show_table_, &QAction::toggled, table_, &QWidget::setVisible);
    connect(show_table_, &QAction::triggered, this, [this](bool shown) {
        table_chosen_ = true;
        program_.preferences.keep_unfolded(table_->objectName(), shown);
    });
    restore_table();
}

/// As the user has left it in the run before.
void ProgramSet::restore_table() {
    const Preferences& known = program_.preferences;
    if (const QString columns = known.columns(table_->objectName()); !columns.isEmpty())
        table_->set_columns(columns);
    const std::optional<bool> shown = known.unfolded(table_->objectName());
    if (!shown) return;
    table_chosen_ = true;
    show_table_->setChecked(*shown);
}

void ProgramSet::keep_table() const {
    const QString columns = table_->columns();
    if (!columns.isEmpty()) program_.preferences.keep_columns(table_->objectName(), columns);
}

/// Where the record needs the whole width, the table would only take from it.
void ProgramSet::resizeEvent(QResizeEvent* event) {
    Screen::resizeEvent(event);
    if (table_chosen_ || !show_table_) return;
    const int least = fontMetrics().averageCharWidth() * kLeastColumns;
    show_table_->setChecked(width() >= ui_->centralwidget->sizeHint().width() + least);
}

/// What a handler has stored goes into the history, and the table shows it.
void ProgramSet::follow_changes() {
    std::vector<db::Bookmark> changed;
    for (PlanChange& change : sets_.take_changes()) {
        for (const RowChange& row : change.rows)
            if (QLatin1String(row.table) == QLatin1String(db::table::kProgrammi))
                changed.push_back(row.row);
        history_->add(std::move(change));
    }
    if (table_is_old_) changed = sets_.rows();
    table_is_old_ = true;
    table_->follow(sets_, changed);
    table_is_old_ = false;
    table_->show_current(shown_row_);
    mark_edits();
}

/// Shows the program as it is now. What is typed and not stored stays in its boxes.
void ProgramSet::refresh_record(bool same_program) {
    const BoxedProgram typed = boxed();
    const BoxedProgram before = shown_;
    const std::optional<double> offset_typed = typed_offset_;
    const bool keeps = same_program && has_edits();
    if (keeps) take_as_stored();
    mostra_record();
    if (!keeps) return;
    show_typed(with_edits(typed, before, shown_));
    typed_offset_ = offset_typed;
}

void ProgramSet::recall(db::Bookmark row) {
    if (row == shown_row_) return;
    if (!may_leave()) return table_->show_current_again(shown_row_);
    sets_.go_to(row);
    mostra_record();
}

void ProgramSet::enter_in_rows(const std::vector<PlanRow>& rows,
                               const programme::ProgramField::Member& member, const QString& text) {
    if (lacks_plan()) return;
    const int lines = sets_.set_in_rows(rows, member, text, offset());
    refresh_record(true);
    if (lines > 0) tell({kLinesGiven, {QString::number(lines)}});
}

void ProgramSet::copy_rows() {
    const std::vector<PlanRow> rows = table_->selected();
    if (rows.empty()) return tell({kNoSelection, {}});
    const int unset = program_.corrected.none_diseqc ? programme::kDiseqcNone : 0;
    QGuiApplication::clipboard()->setText(
        copied_rows(sets_.plan(), rows, sets_.oscillators(), unset));
    tell({kCopied, {QString::number(rows.size())}});
}

/// A program whose number is in the plan takes its place: so rows come back from a spreadsheet.
void ProgramSet::paste_rows() {
    if (lacks_plan() || !may_leave()) return;
    const ImportFile file = pasted_rows(QGuiApplication::clipboard()->text(), offset());
    if (file.candidates.empty()) return tell_problem(this, program_.texts.pick(kNothingToPaste));
    std::optional<double> unit_offset = offset();
    if (program_.corrected.keep_unit) unit_offset.reset();
    const ImportPreview preview = preview_import(
        file.candidates, sets_.programs(), sets_.oscillators(), unit_offset, TakenNumbers::replace);
    if (const ImportRow* refused = first_refused(preview))
        return tell_problem(this, program_.texts.pick(kRefusedPaste)
                                      .arg(refused->line)
                                      .arg(import_problem_text(refused->problem, program_.texts)));
    sets_.apply_import(preview);
    mostra_record();
    tell({kPasted,
          {QString::number(preview.added() - preview.replaced()),
           QString::number(preview.replaced())}});
}

void ProgramSet::insert_rows() {
    const std::vector<PlanRow> rows = table_->selected();
    if (rows.empty()) return tell({kNoSelection, {}});
    if (lacks_plan() || !may_leave()) return;
    sets_.add_copies(rows);
    mostra_record();
}

void ProgramSet::delete_rows() {
    const std::vector<PlanRow> rows = table_->selected();
    if (rows.empty()) return tell({kNoSelection, {}});
    if (lacks_plan() || !ask_remove(this, program_.texts, numbers_of(rows))) return;
    sets_.delete_rows(rows);
    if (holds(rows, shown_row_)) take_as_stored();
    refresh_record(!holds(rows, shown_row_));
}

void ProgramSet::move_rows(bool up) {
    const std::vector<PlanRow> rows = table_->selected();
    if (rows.empty()) return tell({kNoSelection, {}});
    if (!table_->shows_plan_order()) {
        table_->show_plan_order();
        return tell({kPlanOrderShown, {}});
    }
    const std::vector<db::Bookmark> order = moved_rows(table_->shown_order(), rows, up);
    reorder(order);
    std::vector<db::Bookmark> moved;
    moved.reserve(rows.size());
    for (const PlanRow& row : rows)
        moved.push_back(sets_.rows()[static_cast<std::size_t>(std::ranges::find(order, row.row) -
                                                              order.begin())]);
    follow_changes();
    table_->select(moved);
}

void ProgramSet::keep_order() {
    reorder(table_->shown_order());
    table_->show_plan_order();
}

void ProgramSet::reorder(const std::vector<db::Bookmark>& order) {
    if (lacks_plan()) return;
    sets_.reorder(order);
    refresh_record(true);
}

void ProgramSet::step(Direction direction) {
    if (!may_leave()) return;
    // Storing what was typed is a step of its own.
    follow_changes();
    const PlanChange* next = history_->next(direction);
    if (!next) return;
    const PlanChange change = *next;
    const Said words = change_in_words(change);
    try {
        sets_.replay(change, direction);
    } catch (const ChangeRefused&) {
        history_->drop(direction);
        throw;
    }
    // Whatever happens to the showing, the file is there.
    history_->took(direction);
    table_is_old_ = true;
    sets_.show_changed(change, direction);
    move_plan(true);
    tell({direction == Direction::back ? kUndone : kRedone, {words.in(program_.texts)}});
}

/// In the status line: no box for what went as it was wanted.
void ProgramSet::tell(const Said& what) {
    Q_EMIT upload_state(what.in(program_.texts), QString());
}

}  // namespace m47::plans
