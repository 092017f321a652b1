// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QString>

namespace m47 {

/// The icon of the toolbar button with this key: the desktop's own where its theme has one that
/// can be read on the window colour, else the program's glyph in the palette's text colour, which
/// follows a change of palette and is sharp at every scale. A key without an icon gives a null
/// icon. A `faint` one is for a key that does nothing yet: it can be clicked but promises nothing.
QIcon toolbar_icon(const QString& key, bool faint = false);

/// The program's icon, 16 to 256 pixels, for its windows and the desktop's task list.
QIcon application_icon();

}  // namespace m47
