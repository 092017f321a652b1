// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>
#include <optional>
#include <vector>

#include "beam_fit.h"

namespace m47::peak {

/// The levels along the arc as they come: a dot for each, a line through the means of the places,
/// and a mark where the peak is. West is at the left.
class PeakCurve : public QWidget {
    Q_OBJECT
  public:
    explicit PeakCurve(QWidget* parent = nullptr);

    /// Begins anew, `span` steps to either side; levels are in `unit`, which may be empty.
    void begin(int span, const QString& unit);
    void add(const Point& level);
    /// The peak is so many steps east of the start.
    void set_peak(std::optional<double> steps);
    /// Everything that was added, in its order.
    const std::vector<Point>& levels() const { return levels_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QRectF field() const;
    QPointF place(const QRectF& field, double steps, double db) const;
    void paint_scale(QPainter& painter, const QRectF& field) const;
    void paint_levels(QPainter& painter, const QRectF& field) const;
    void paint_peak(QPainter& painter, const QRectF& field) const;

    std::vector<Point> levels_;
    std::optional<double> peak_;
    QString unit_;
    int span_ = 50;
    double lowest_ = 0;
    double highest_ = 1;
};

}  // namespace m47::peak
