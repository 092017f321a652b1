// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPainter>

#include "report_pages.h"
#include "texts.h"
#include "visit_report.h"

namespace m47::sites {

/// Draws `program` over its visits with `painter` on paper: the quantities that say most and were
/// measured, two at most, each with the limits in force last as dashed lines; none where nothing
/// was measured. All that is handed over has to outlive the drawings.
QList<report::DrawTrend> visit_charts(const ReportedProgram& program, QPainter& painter,
                                      const Texts& texts);

}  // namespace m47::sites
