// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace m47 {

/// Makes everything on `screen` usable without a mouse and without eyes: toolbar buttons are
/// reached by Tab, no table holds Tab back, and a control that says nothing by itself takes the
/// name that a screen reader speaks from its tooltip, else from its label or its tab. Run when
/// tooltips stand in the language in use.
/// A toolbar button's tooltip, where it appears, names the shortcut too; the text itself stays.
void open_to_keyboard(QWidget* screen);

/// True for a list, a table or a page: what PgUp and PgDn move about in, whatever else they are for
/// on the screen.
bool pages_by_keyboard(const QWidget* control);

}  // namespace m47
