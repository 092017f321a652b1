// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run_state.h"

namespace m47::unattended {

/// Why there is nothing to measure: %1 is the plan.
inline const QString kNoPlan = QStringLiteral("there is no plan %1");
inline const QString kNothingMonitored = QStringLiteral("no program of the plan %1 is monitored");

/// SIGHUP does not end this run but has its configuration read again.
bool rereads(const Run& run);

/// True where the configuration was asked for again and is good: the run goes on with that. A bad
/// one is told, and the one before stays in force.
bool read_again(Run& run);

}  // namespace m47::unattended
