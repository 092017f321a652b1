// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace m47 {

/// Makes everything on `screen` usable without a mouse and without eyes: toolbar buttons are
/// reached by Tab, no table holds Tab back, and a control that says nothing by itself takes the
/// name that a screen reader speaks from its tooltip, else from its label or its tab. Run when
/// tooltips stand in the language in use.
void open_to_keyboard(QWidget* screen);

}  // namespace m47
