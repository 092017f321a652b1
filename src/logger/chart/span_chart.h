// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPoint>
#include <QtPlugin>
#include <functional>

#include "span.h"

class QWidget;

namespace m47::logger {

/// The curve of a span, as whoever shows it knows it.
class SpanChart {
  public:
    virtual ~SpanChart() = default;

    /// Called with the row (from 1) of a point that was clicked, or close by.
    std::function<void(int row)> on_point_clicked;

    /// What shows it, which takes the chart along when it goes.
    virtual QWidget* widget() = 0;
    /// Shows these points in place of the former ones; none is marked.
    virtual void show_points(const SpanPoints& points) = 0;
};

/// What makes the curve; the plotting library comes with it.
class SpanCharts {
  public:
    virtual ~SpanCharts() = default;

    virtual SpanChart* make(QWidget* parent) = 0;
};

/// The file of what makes the curve.
inline constexpr const char* kSpanPart = "m47-span";

}  // namespace m47::logger

#define M47_SPAN_CHARTS "org.m47remote.SpanCharts/1"
Q_DECLARE_INTERFACE(m47::logger::SpanCharts, M47_SPAN_CHARTS)
