// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>

#include "corrected_behaviour.h"

namespace m47 {

/// Ties each action below `screen` that has the name of an entry of the menu "Corrected behaviour"
/// to its choice: it shows what is chosen now, and ticking it chooses. `choices` outlives `screen`.
void tie_corrected(QObject* screen, CorrectedBehaviour& choices);

/// Makes two actions one choice: ticking either ticks the other.
void follow_each_other(QAction* one, QAction* other);

}  // namespace m47
