// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include "trend_chart.h"

namespace m47::trend {

/// Makes the charts by means of the plotting library.
class TrendPlots : public QObject, public TrendCharts {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID M47_TREND_CHARTS)
    Q_INTERFACES(m47::trend::TrendCharts)
  public:
    TrendChart* make(const TrendData& rows, TrendLimits limits, const Texts& texts) override;
};

}  // namespace m47::trend
