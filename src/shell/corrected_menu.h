// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QMenu>
#include <vector>

#include "program_state.h"

namespace m47::shell {

/// The menu "Corrected behaviour": an entry for each choice, one for all of them, and whether the
/// program shall start with them. The choices themselves are those of the program's state; where
/// the user has asked for it they are all made here, at the start.
class CorrectedMenu : public QObject {
    Q_OBJECT
  public:
    /// Fills `menu`, which owns this; its entries belong to the menu's window.
    CorrectedMenu(QMenu* menu, ProgramState& program);

    /// Shows captions and tooltips in the language in use.
    void show_texts();

    /// The entries that `screen` has in a menu of its own are the same choices as those here.
    void join(const QObject* screen);

  Q_SIGNALS:
    /// The user has changed one or more of the choices.
    void chosen();

  private:
    QAction* add_entry(const char* name);
    void add_choices();
    void add_all();
    void add_start();
    void choose_one();
    void cmdcorrectall_Click(bool ticked);

    QMenu* menu_;
    ProgramState& program_;
    std::vector<QAction*> entries_;  ///< in the order of kCorrectedEntries
    QAction* all_ = nullptr;
    QAction* start_ = nullptr;
    bool following_ = false;  ///< entries change because another one has
};

}  // namespace m47::shell
