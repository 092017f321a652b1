// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGridLayout>
#include <QGroupBox>

namespace m47::realtime {

/// Brings the rows of `measures` level with those of `limits`, the grid in the frame `alarms`
/// beside it: row k of one stands at the height of row k of the other. Row 0 of `limits` has the
/// captions, that of `measures` is empty. To be done again where font or style have changed.
void level_rows(QGridLayout& measures, const QGroupBox& alarms, QGridLayout& limits);

}  // namespace m47::realtime
