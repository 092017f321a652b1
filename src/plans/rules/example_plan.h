// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "database.h"

namespace m47::plans {

/// The name of the plan that a new database can be given.
inline const QString kExamplePlan = QStringLiteral("EXAMPLE");

/// Adds a plan with programs of a satellite at a universal LNB, ready to be measured, monitored
/// with limits. The simulated meter receives all of them. A Fault where it cannot be stored.
void add_example_plan(db::Database& database);

}  // namespace m47::plans
