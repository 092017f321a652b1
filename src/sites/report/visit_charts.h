// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPainter>
#include <memory>

#include "part.h"
#include "report_pages.h"
#include "trend_chart.h"
#include "visit_report.h"

namespace m47::sites {

/// Draws programs over visits on paper. `texts` has to outlive it.
class VisitCharts {
  public:
    explicit VisitCharts(const Texts& texts) : texts_(texts) {}

    /// Draws the quantities of `program` that say most and were measured, two at most; none where
    /// nothing was. `program` has to outlive the drawings, as this has to.
    QList<report::DrawTrend> of(const ReportedProgram& program);

    /// The one painter that the drawings draw with, not begun yet.
    const std::shared_ptr<QPainter>& painter();

    /// The file of what makes charts, where it could not be loaded.
    const QString& fault() const { return part_.fault(); }

  private:
    void draw(const ReportedProgram& program, measurement::Quantity quantity, QSizeF room);

    const Texts& texts_;
    Part part_{trend::kTrendPart};
    trend::TrendCharts* charts_ = nullptr;
    trend::TrendData no_rows_;
    std::shared_ptr<QPainter> painter_;
};

}  // namespace m47::sites
