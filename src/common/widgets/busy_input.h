// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QKeyEvent>
#include <QPoint>
#include <QWidget>

namespace m47 {

/// Says whether using `control`, a widget or an action, while the meter is waited for is carried
/// out afterwards. Unless it is said, only what changes nothing but the view is; where it is said
/// of a widget that it is not, nothing in it is.
void keep_while_busy(QObject* control, bool keep = true);

/// Says that using `control` while the meter is waited for is carried out at once, in the middle of
/// the exchange: a click on a button, the shortcut of an action, Esc in a view. It must send
/// nothing, and leave alone what the running handler works on.
void act_while_busy(QObject* control);

/// True where a press on `target`, or the key, is on a control that acts at once.
bool press_acts_at_once(const QWidget* target);
bool key_acts_at_once(const QWidget* focus, const QKeyEvent& key);

/// The kept action whose shortcut the key is, the one of the window in front before others; nullptr
/// where it is none's.
QAction* kept_action(const QKeyEvent& key);

/// The user has been waiting for the meter so long that it is to be seen: keys that would be
/// dropped are drawn as if they were disabled, see BusyStyle.
void show_busy(bool on);
bool busy_is_shown();
/// The same as show_busy(false) while windows are going, which are not drawn any more.
void forget_busy();

/// True when a press on `target`, at `place` of it, may be carried out after the wait: a control
/// that is kept, a tab, a scroll bar, a page, a box to type in, a menu that opens.
bool press_is_kept(const QWidget* target, QPoint place);

/// The same for a key pressed while `focus`, which may be nullptr, has the keyboard: Tab, what
/// moves about or edits in a box, the shortcuts of kept actions, and each key of a kept window that
/// has the keyboard itself.
bool key_is_kept(const QWidget* focus, const QKeyEvent& key);

}  // namespace m47
