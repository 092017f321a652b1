// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include "part.h"
#include "span_chart.h"
#include "texts.h"

class QLabel;
class QVBoxLayout;

namespace m47::logger {

/// The span as a curve. What draws it is loaded with the first span.
class SpanView : public QWidget {
    Q_OBJECT
  public:
    explicit SpanView(QWidget* parent = nullptr);

    /// Shows these points in place of the former ones; none is marked. `texts` say it where what
    /// draws is missing.
    void show_points(SpanPoints points, const Texts& texts);

    const SpanPoints& points() const { return points_; }

  Q_SIGNALS:
    /// A click on the point of row `row` (from 1), or close by.
    void point_clicked(int row);

  private:
    void make_chart(const Texts& texts);

    Part part_{kSpanPart};
    QVBoxLayout* layout_;
    QLabel* missing_ = nullptr;
    SpanChart* chart_ = nullptr;
    SpanPoints points_;
};

}  // namespace m47::logger
