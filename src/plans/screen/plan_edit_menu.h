// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QMenuBar>

#include "texts.h"

namespace m47::plans {

/// The menu "Edit" of the plan screen, in the language in use when it is made: what was stored
/// taken back, and what is done to the selected rows of the table.
struct PlanEditMenu {
    /// Adds it to `bar`. Its actions belong to `table` too, where their shortcuts hold and a click
    /// with the right button shows them.
    PlanEditMenu(QMenuBar* bar, QWidget* table, const Texts& texts);

    QAction* undo;
    QAction* redo;
    QAction* copy_rows;
    QAction* paste_rows;
    QAction* insert_rows;
    QAction* delete_rows;
    QAction* row_up;
    QAction* row_down;
    QAction* keep_order;
    QAction* show_table;
};

}  // namespace m47::plans
