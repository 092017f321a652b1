// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_plots.h"

#include "trend_plot.h"

namespace m47::trend {

TrendChart* TrendPlots::make(const TrendData& rows, TrendLimits limits, const Texts& texts) {
    return new TrendPlot(rows, std::move(limits), texts);
}

}  // namespace m47::trend
