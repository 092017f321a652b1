// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QMdiArea>
#include <QMenu>
#include <QToolBar>
#include <functional>

#include "program_state.h"

namespace m47::shell {

/// The menu "Window": whether the screens stand as tabs or as windows, and which of them are open.
class WindowMenu : public QObject {
    Q_OBJECT
  public:
    /// Fills `menu`, which owns this, and gives `area` the arrangement that was chosen last.
    WindowMenu(QMenu* menu, QMdiArea* area, ProgramState& program);

    /// The keys of the toolbar whose screens are open, and the one whose screen is in front.
    std::function<QList<QAction*>()> open_keys;
    std::function<QString()> front_key;

    /// The keys of `bar` have words under their icons or not, as it was chosen last; so have those
    /// of the bars taken before.
    void take_toolbar(QToolBar* bar);

    /// Whether the keys of the toolbars have words.
    bool words() const;

    /// Whether a screen that opens fills the window.
    bool as_tabs() const { return tabs_->isChecked(); }

    /// Shows captions and tooltips in the language in use.
    void show_texts();

  Q_SIGNALS:
    /// The screens are about to become tabs: where they stand now is not seen any more.
    void tabs_wanted();
    /// The screens have become windows: each has to be given its place.
    void windows_wanted();
    /// The keys of the toolbars are to have words, or none any more.
    void words_wanted(bool words);
    /// The user wants the screen of `key` in front.
    void picked(const QString& key);

  private:
    QAction* add_entry(const char* name);
    void show_as_tabs(bool tabs);
    void show_words();
    void arrange(void (QMdiArea::*how)());
    void list_screens();
    QAction* add_screen(const QAction* key);

    QMenu* menu_;
    QMdiArea* area_;
    ProgramState& program_;
    QAction* tabs_;
    QAction* cascade_;
    QAction* tile_;
    QAction* words_;
    QList<QToolBar*> bars_;
    QList<QAction*> screens_;  ///< an entry for each open screen, made when the menu opens
};

}  // namespace m47::shell
