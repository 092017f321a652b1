// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "custom_plot.h"

#include <functional>

#include "span.h"

namespace m47::logger {

/// The span as a curve in the colours of the palette. A click on a point marks it.
class SpanChart : public QCustomPlot {
    Q_OBJECT
  public:
    explicit SpanChart(QWidget* parent = nullptr);

    /// Shows these points in place of the former ones; none is marked.
    void show_points(SpanPoints points);

    const SpanPoints& points() const { return points_; }

    /// Where row `row` (1 to the number of points) lies on the widget.
    QPoint place_of(int row) const;

  Q_SIGNALS:
    /// A click on the point of row `row` (from 1), or close by.
    void point_clicked(int row);

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void take_colours();
    void name_rows();
    void click(const QMouseEvent* event);

    SpanPoints points_;
    QCPGraph* curve_;
    QCPGraph* mark_;
};

}  // namespace m47::logger
