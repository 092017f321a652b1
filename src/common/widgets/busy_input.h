// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QKeyEvent>
#include <QPoint>
#include <QWidget>

namespace m47 {

/// Says whether using `control`, a widget or an action, while the meter is waited for is carried
/// out afterwards. Unless it is said, only what changes nothing but the view is; where it is said
/// of a widget that it is not, nothing in it is.
void keep_while_busy(QObject* control, bool keep = true);

/// True when a press on `target`, at `place` of it, may be carried out after the wait: a control
/// that is kept, a tab, a scroll bar, a page, a box to type in, a menu that opens.
bool press_is_kept(const QWidget* target, QPoint place);

/// The same for a key pressed while `focus`, which may be nullptr, has the keyboard: Tab, what
/// moves about or edits in a box, the shortcuts of kept actions, and each key of a kept window that
/// has the keyboard itself.
bool key_is_kept(const QWidget* focus, const QKeyEvent& key);

}  // namespace m47
