// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QList>
#include <QToolBar>

namespace m47 {

/// Keeps the room of the keys `keys` of `bar` while they are hidden, so that those behind them stay
/// where they are.
void keep_room_of_keys(QToolBar* bar, const QList<QAction*>& keys);

}  // namespace m47
