// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>

namespace m47 {

/// Makes `box` as wide as `longest` in its font needs.
void fit_to_text(QLineEdit& box, const QString& longest);

/// `widget` keeps its room while it is hidden, so that nothing moves when it comes.
void keep_room(QWidget& widget);

}  // namespace m47
