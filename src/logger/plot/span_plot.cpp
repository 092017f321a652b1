// SPDX-License-Identifier: GPL-3.0-or-later
#include "span_plot.h"

#include <algorithm>

namespace m47::logger {
namespace {

constexpr double kCurveWidth = 1.5;
constexpr double kMarkSize = 9;
constexpr double kPointSize = 3;
/// How far from a point, in widths of a character, a click still means it.
constexpr int kReach = 2;
/// Room for a row's name, in characters of the axis.
constexpr int kNameWidth = 9;
/// The axis goes on beyond the last row, so that half its name still lies inside.
constexpr double kRoomForLastName = 1.05;

void colour_axis(QCPAxis* axis, const QColor& text, const QColor& faint) {
    axis->setBasePen(QPen(text));
    axis->setTickPen(QPen(text));
    axis->setSubTickPen(QPen(text));
    axis->setTickLabelColor(text);
    axis->grid()->setPen(QPen(faint, 0, Qt::DotLine));
    axis->grid()->setZeroLinePen(QPen(faint));
}

}  // namespace

SpanPlot::SpanPlot(QWidget* parent) : QCustomPlot(parent), curve_(addGraph()), mark_(addGraph()) {
    mark_->setLineStyle(QCPGraph::lsNone);
    xAxis->setTickLabelFont(font());
    yAxis->setTickLabelFont(font());
    setMinimumHeight(fontMetrics().height() * 9);
    connect(this, &QCustomPlot::mousePress, this, [this](QMouseEvent* event) { click(event); });
    take_colours();
    show_points({});
}

void SpanPlot::show_points(const SpanPoints& points) {
    points_ = points;
    QVector<double> rows;
    QVector<double> values;
    for (const SpanPoint& point : points_) {
        rows += static_cast<double>(rows.size() + 1);
        values += point.value;
    }
    curve_->setData(rows, values, true);
    mark_->data()->clear();
    name_rows();
    const double last = std::max<double>(2, static_cast<double>(points_.size()));
    xAxis->setRange(0, last * kRoomForLastName);
    if (points_.empty()) {
        yAxis->setRange(0, 100);
    } else {
        curve_->rescaleValueAxis();
        yAxis->setRange(yAxis->range().lower - 2, yAxis->range().upper + 2);
    }
    replot();
}

/// As many names as fit beside one another; each row keeps its own for the read-out.
void SpanPlot::name_rows() {
    const int room = std::max(1, width() / (fontMetrics().averageCharWidth() * kNameWidth));
    const std::size_t fitting = static_cast<std::size_t>(room);
    const std::size_t step = std::max<std::size_t>(1, (points_.size() + fitting - 1) / fitting);
    const auto names = QSharedPointer<QCPAxisTickerText>::create();
    for (std::size_t at = 0; at < points_.size(); at += step)
        names->addTick(static_cast<double>(at + 1), points_[at].label);
    xAxis->setTicker(names);
}

QPoint SpanPlot::place_of(int row) const {
    const auto point = curve_->data()->at(row - 1);
    return QPointF(xAxis->coordToPixel(point->key), yAxis->coordToPixel(point->value)).toPoint();
}

void SpanPlot::click(const QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || curve_->data()->isEmpty()) return;
    const int count = curve_->data()->size();
    const int nearest = std::clamp(qRound(xAxis->pixelToCoord(event->pos().x())), 1, count);
    const int reach = fontMetrics().averageCharWidth() * kReach;
    if (!axisRect()->rect().contains(event->pos()) ||
        std::abs(place_of(nearest).x() - event->pos().x()) > reach)
        return;
    mark_->setData({double(nearest)}, {curve_->data()->at(nearest - 1)->value}, true);
    replot();
    if (on_point_clicked) on_point_clicked(nearest);
}

void SpanPlot::changeEvent(QEvent* event) {
    QCustomPlot::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    take_colours();
    replot(QCustomPlot::rpQueuedReplot);
}

void SpanPlot::resizeEvent(QResizeEvent* event) {
    name_rows();
    QCustomPlot::resizeEvent(event);
}

void SpanPlot::take_colours() {
    const QColor text = palette().color(QPalette::Text);
    const QColor faint = palette().color(QPalette::Mid);
    const QColor curve = palette().color(QPalette::Link);
    setBackground(palette().color(QPalette::Base));
    colour_axis(xAxis, text, faint);
    colour_axis(yAxis, text, faint);
    curve_->setPen(QPen(curve, kCurveWidth));
    curve_->setScatterStyle({QCPScatterStyle::ssDisc, curve, kPointSize});
    mark_->setScatterStyle({QCPScatterStyle::ssCircle, QPen(text, 2), Qt::NoBrush, kMarkSize});
}

}  // namespace m47::logger
