// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_history.h"

#include <QUndoCommand>
#include <utility>

namespace m47::plans {
namespace {

/// More than anybody goes back; an import of a whole plan is about 100 KB.
constexpr int kMostSteps = 200;

/// A step of the stack. The file has been changed by the time the stack moves.
class PlanStep : public QUndoCommand {
  public:
    explicit PlanStep(PlanChange step_change) : change(std::move(step_change)) {}

    // The stack forgets an obsolete step when it comes by.
    void undo() override { setObsolete(dropped); }
    void redo() override { setObsolete(dropped); }

    PlanChange change;
    mutable bool dropped = false;
};

/// The step that is next to `direction`; nullptr where there is none.
const PlanStep* step_to(const QUndoStack& stack, Direction direction) {
    const int place = direction == Direction::back ? stack.index() - 1 : stack.index();
    if (place < 0 || place >= stack.count()) return nullptr;
    return static_cast<const PlanStep*>(stack.command(place));
}

}  // namespace

PlanHistory::PlanHistory(QAction* undo, QAction* redo, const Texts& texts)
    : undo_(undo),
      redo_(redo),
      undo_caption_(undo->text()),
      redo_caption_(redo->text()),
      texts_(texts) {
    stack_.setUndoLimit(kMostSteps);
    show();
}

void PlanHistory::add(PlanChange change) {
    stack_.push(new PlanStep(std::move(change)));
    show();
}

const PlanChange* PlanHistory::next(Direction direction) const {
    const PlanStep* step = step_to(stack_, direction);
    return step ? &step->change : nullptr;
}

void PlanHistory::took(Direction direction) {
    if (direction == Direction::back)
        stack_.undo();
    else
        stack_.redo();
    show();
}

void PlanHistory::drop(Direction direction) {
    if (const PlanStep* step = step_to(stack_, direction)) step->dropped = true;
    took(direction);
}

void PlanHistory::show_on(QAction* action, Direction direction, const QString& caption) const {
    const PlanChange* change = next(direction);
    action->setEnabled(change != nullptr);
    action->setText(change ? caption + QStringLiteral(": ") + change_in_words(*change).in(texts_)
                           : caption);
}

void PlanHistory::show() const {
    show_on(undo_, Direction::back, undo_caption_);
    show_on(redo_, Direction::forth, redo_caption_);
}

}  // namespace m47::plans
