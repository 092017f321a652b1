// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "custom_plot.h"
#include "span_chart.h"

namespace m47::logger {

/// The span as a curve in the colours of the palette. A click on a point marks it.
class SpanPlot : public QCustomPlot, public SpanChart {
  public:
    explicit SpanPlot(QWidget* parent);

    QWidget* widget() override { return this; }
    void show_points(const SpanPoints& points) override;

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QPoint place_of(int row) const;
    void take_colours();
    void name_rows();
    void click(const QMouseEvent* event);

    SpanPoints points_;
    QCPGraph* curve_;
    QCPGraph* mark_;
};

/// Makes the curve by means of the plotting library.
class SpanPlots : public QObject, public SpanCharts {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID M47_SPAN_CHARTS)
    Q_INTERFACES(m47::logger::SpanCharts)
  public:
    SpanChart* make(QWidget* parent) override { return new SpanPlot(parent); }
};

}  // namespace m47::logger
