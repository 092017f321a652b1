// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <optional>

#include "alarm_limits.h"
#include "customer_report.h"
#include "realtime_panel.h"
#include "recordset.h"
#include "trend_data.h"

namespace m47::realtime {

/// The limits that a value of `quantity` has to lie between by the panel as it stands; nothing
/// while its alarm is not ticked or one of the two is none. The level has those of the presentation
/// in force.
std::optional<trend::TrendRange> trend_limits(measurement::Quantity quantity,
                                              const RealtimePanel& panel,
                                              const RealtimeState& state,
                                              EmptyLimits empty = EmptyLimits::zero);

/// The limits as they stand on the panel; those that nothing is held against are empty.
report::ReportLimits limits_of_panel(const RealtimePanel& panel, const RealtimeState& state,
                                     EmptyLimits empty = EmptyLimits::zero);

/// Those of the monitored programs among `programs`, whose alarms are on where the panel has them
/// on. Leaves the set at its end.
QList<report::ReportLimits> limits_of_plan(db::Recordset& programs, const RealtimePanel& panel,
                                           EmptyLimits empty = EmptyLimits::zero);

}  // namespace m47::realtime
