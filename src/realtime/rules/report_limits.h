// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

#include "realtime_panel.h"
#include "recordset.h"

namespace m47 {

/// The limits of one program as the report shows them, "45 … 80" each; empty where its alarm is not
/// on or the presentation does not measure it.
struct ReportLimits {
    QString program;  ///< its number in the plan, empty for a single element
    QString frequency;
    QString level, cn, ber, mer;
};

/// The limits as they stand on the panel.
ReportLimits limits_of_panel(const RealtimePanel& panel, const RealtimeState& state);

/// Those of the monitored programs among `programs`, whose alarms are on where the panel has them
/// on. Leaves the set at its end.
QList<ReportLimits> limits_of_plan(Recordset& programs, const RealtimePanel& panel);

}  // namespace m47
