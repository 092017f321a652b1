// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QUndoStack>

#include "plan_change.h"

namespace m47::plans {

/// What was stored in this session and can be taken back, step by step. The file is changed by
/// whoever asks for a step; here stands how far that has come.
class PlanHistory {
  public:
    /// Keeps the captions of `undo` and `redo`: what the next step is, and whether there is one.
    PlanHistory(QAction* undo, QAction* redo, const Texts& texts);

    /// `change` is in the file.
    void add(PlanChange change);
    /// The next step to `direction`; nullptr where there is none.
    const PlanChange* next(Direction direction) const;
    /// The next step has been taken in the file.
    void took(Direction direction);
    /// The next step can never be taken: another program has changed what it stands on.
    void drop(Direction direction);

  private:
    void show_on(QAction* action, Direction direction, const QString& caption) const;
    void show() const;

    QUndoStack stack_;
    QAction* undo_;
    QAction* redo_;
    QString undo_caption_;
    QString redo_caption_;
    const Texts& texts_;
};

}  // namespace m47::plans
