// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "plan_sets.h"

namespace m47::plans {

/// Writes the current plan of `sets` into the file `path`, whole or not at all: separated by commas
/// where its name ends in ".csv", else by TAB. Nothing on success, else the reason.
QString export_plan(const PlanSets& sets, const QString& path);

}  // namespace m47::plans
