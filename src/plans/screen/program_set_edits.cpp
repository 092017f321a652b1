// SPDX-License-Identifier: GPL-3.0-or-later
// What is typed into the boxes of the plan screen and not stored: marked, asked about, put back.
#include <QCloseEvent>
#include <QScopedValueRollback>
#include <algorithm>

#include "plan_questions.h"
#include "program_set.h"
#include "ui_program_set.h"

namespace m47::plans {
namespace {

constexpr Bilingual kEditsLeft{"Edits of program %1 were not stored",
                               "Le modifiche del programma %1 non sono state memorizzate"};
constexpr Bilingual kEditsOfNew{
    "Edits of the program without a number were not stored",
    "Le modifiche del programma senza numero non sono state memorizzate"};
constexpr Bilingual kPutBack{"Put back", "Riprendi"};
constexpr Bilingual kRefusedLeft{"The new program %1 was refused and not stored",
                                 "Il nuovo programma %1 è stato rifiutato e non memorizzato"};
constexpr Bilingual kPutBackTyped{"Put back what was typed", "Riprendi ciò che era scritto"};

}  // namespace

BoxedProgram ProgramSet::boxed() {
    return {boxes_.read(), boxes_.oscillator()};
}

bool ProgramSet::has_edits() {
    return shown_row_ && is_edited(boxed(), shown_);
}

/// What stands in the boxes is stored, or not wanted any more: nothing is lost with it.
void ProgramSet::take_as_stored() {
    shown_ = boxed();
}

/// Before another program comes into the boxes.
void ProgramSet::keep_lost_edits() {
    if (!has_edits()) return;
    lost_ =
        LostEdits{shown_plan_, *shown_row_, boxed(), shown_, known_, typed_offset_, refused_new_};
    offer_lost_edits();
}

void ProgramSet::offer_lost_edits() {
    if (!edits_bar_) {
        edits_bar_ = new EditsBar(program_.texts);
        when(edits_bar_, &EditsBar::put_back_asked, "edits_back_Click", [this] { put_back(); });
        connect(edits_bar_, &EditsBar::dismissed, this, [this] { forget_lost_edits(); });
        below_->addWidget(edits_bar_);
    }
    const Texts& texts = program_.texts;
    if (lost_->refused_new)
        return edits_bar_->offer(
            texts.pick(kRefusedLeft).arg(lost_->typed.record.pg_num).simplified(),
            texts.pick(kPutBackTyped));
    const QString& number = lost_->known.program.pg_num;
    edits_bar_->offer(
        number.isEmpty() ? texts.pick(kEditsOfNew) : texts.pick(kEditsLeft).arg(number),
        texts.pick(kPutBack));
}

void ProgramSet::forget_lost_edits() {
    lost_.reset();
    if (edits_bar_) edits_bar_->hide();
}

/// The row in which that program stands now: it may have another place in the plan.
db::Bookmark ProgramSet::row_of(const LostEdits& edits) {
    const auto is_it = [&](const PlanRow& row) {
        return row.program.pg_num == edits.known.program.pg_num;
    };
    const std::vector<PlanRow> there = sets_.read_rows({edits.row});
    if (!there.empty() && is_it(there.front())) return edits.row;
    const std::vector<PlanRow> all = sets_.read_rows(sets_.rows());
    const auto moved = std::ranges::find_if(all, is_it);
    if (moved == all.end()) throw db::RecordGone();
    return moved->row;
}

void ProgramSet::show_typed(const BoxedProgram& typed) {
    const QScopedValueRollback<bool> filling(showing_, true);
    boxes_.show(typed.record);
    boxes_.set_oscillator(typed.oscillator);
}

/// What is in the boxes now is offered in its turn, where it is edited too.
void ProgramSet::put_back() {
    if (!lost_) return;
    const LostEdits edits = *lost_;
    forget_lost_edits();
    if (edits.plan != sets_.plan()) sets_.open_plan(edits.plan);
    sets_.go_to(row_of(edits));
    move_plan(true);
    // What another program has stored over the same box since is not overwritten unasked.
    if (edits_clash(edits.typed, edits.shown, shown_)) known_ = edits.known;
    show_typed(with_edits(edits.typed, edits.shown, shown_));
    typed_offset_ = edits.typed_offset;
}

void ProgramSet::watch_edits() {
    const auto mark = [this] { mark_edits(); };
    QWidget* record = ui_->centralwidget;
    for (auto* box : record->findChildren<QLineEdit*>())
        connect(box, &QLineEdit::textChanged, this, mark);
    for (auto* list : record->findChildren<QComboBox*>())
        connect(list, &QComboBox::currentIndexChanged, this, mark);
    for (auto* button : record->findChildren<QAbstractButton*>())
        connect(button, &QAbstractButton::toggled, this, mark);
}

/// The caption tells whether something in the boxes is not stored.
void ProgramSet::mark_edits() {
    if (showing_) return;
    static const QString kMark = QStringLiteral(" *");
    QString caption = windowTitle();
    if (caption.endsWith(kMark)) caption.chop(kMark.size());
    setWindowTitle(has_edits() ? caption + kMark : caption);
}

/// True where the program may leave the boxes; asked where the user wants to be.
bool ProgramSet::may_leave() {
    if (!program_.corrected.ask_leave || !has_edits()) return true;
    switch (ask_edits(this, program_.texts, known_.program.pg_num)) {
        case Edits::store:
            return store_record(true) == Outcome::stored;
        case Edits::discard:
            take_as_stored();
            return true;
        case Edits::stay:
            break;
    }
    return false;
}

bool ProgramSet::may_be_left() {
    bool left = false;
    handle("Form_QueryUnload", [&] { left = may_leave(); });
    return left;
}

void ProgramSet::closeEvent(QCloseEvent* event) {
    if (!may_be_left()) return event->ignore();
    Screen::closeEvent(event);
}

}  // namespace m47::plans
