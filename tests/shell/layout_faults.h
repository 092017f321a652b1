// SPDX-License-Identifier: GPL-3.0-or-later
// What a person would find wrong with a window as it is drawn.
#pragma once

#include <QStringList>
#include <QWidget>

namespace m47::shell {

/// Controls of `window` that lie over one another, cut their text, are smaller than they have to
/// be, or lie where nothing can be scrolled to: a line for each, by the names of the objects.
QStringList layout_faults(const QWidget* window);

/// Outlines of less than 3:1 against the ground around them, and texts of less than 4.5:1 against
/// theirs, measured in a picture of `window`. What is disabled may be fainter.
QStringList contrast_faults(QWidget* window);

}  // namespace m47::shell
