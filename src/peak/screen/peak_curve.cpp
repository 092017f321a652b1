// SPDX-License-Identifier: GPL-3.0-or-later
#include "peak_curve.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <map>

#include "contrast.h"

namespace m47::peak {
namespace {

constexpr double kLeastRange = 2;  // dB; a flat curve is to look flat
constexpr double kDot = 2.5;
constexpr int kSidesOfScale = 2;

QString number(double value) {
    return QString::number(value, 'f', 1);
}

/// The mean of all levels of each place, from west to east.
std::map<int, double> means_of(const std::vector<Point>& levels) {
    std::map<int, std::pair<double, int>> sums;
    for (const Point& level : levels) {
        auto& [sum, count] = sums[level.steps];
        sum += level.db;
        ++count;
    }
    std::map<int, double> means;
    for (const auto& [steps, sum] : sums) means[steps] = sum.first / sum.second;
    return means;
}

}  // namespace

PeakCurve::PeakCurve(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("peak_curve"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PeakCurve::begin(int span, const QString& unit) {
    levels_.clear();
    peak_.reset();
    span_ = span;
    unit_ = unit;
    update();
}

void PeakCurve::add(const Point& level) {
    levels_.push_back(level);
    const auto [low, high] = std::ranges::minmax(levels_, {}, &Point::db);
    const double middle = (low.db + high.db) / 2;
    const double half = std::max(high.db - low.db, kLeastRange) / 2;
    lowest_ = middle - half;
    highest_ = middle + half;
    update();
}

void PeakCurve::set_peak(std::optional<double> steps) {
    peak_ = steps;
    update();
}

QSize PeakCurve::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 12};
}

QSize PeakCurve::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 40, fontMetrics().height() * 6};
}

/// Where the levels are drawn: beside it are those of the scale, below it the degrees.
QRectF PeakCurve::field() const {
    const QFontMetrics metrics = fontMetrics();
    const double left = metrics.horizontalAdvance(QStringLiteral("-188.8 ")) + kDot;
    const double side = metrics.horizontalAdvance(QStringLiteral("10.0°"));
    return QRectF(rect()).adjusted(left, metrics.height() * 1.2, -side, -metrics.height() * 1.5);
}

QPointF PeakCurve::place(const QRectF& field, double steps, double db) const {
    const double along = (steps + span_) / (2.0 * span_);
    const double up = (db - lowest_) / (highest_ - lowest_);
    return {field.left() + along * field.width(), field.bottom() - up * field.height()};
}

void PeakCurve::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), palette().base());
    const QRectF inside = field();
    paint_scale(painter, inside);
    if (levels_.empty()) return;
    paint_peak(painter, inside);
    paint_levels(painter, inside);
}

void PeakCurve::paint_scale(QPainter& painter, const QRectF& field) const {
    const QColor text = palette().color(QPalette::Text);
    const double height = fontMetrics().height();
    painter.setPen(just_seen(text, palette().color(QPalette::Base), kOutlineContrast));
    painter.drawRect(field);
    painter.setPen(text);
    for (int k = -kSidesOfScale; k <= kSidesOfScale; ++k) {
        const double steps = span_ * k / static_cast<double>(kSidesOfScale);
        const double x = place(field, steps, lowest_).x();
        painter.drawLine(QPointF(x, field.bottom()), QPointF(x, field.bottom() + kDot));
        const QRectF room(x - height * 3, field.bottom() + kDot, height * 6, height * 1.3);
        painter.drawText(room, Qt::AlignHCenter | Qt::AlignTop, number(steps / 10) + u'°');
    }
    painter.drawText(QRectF(0, 0, width(), field.top()), Qt::AlignLeft | Qt::AlignVCenter,
                     u' ' + unit_);
    if (levels_.empty()) return;
    // Within the height of the field: below it are the degrees.
    const auto paint_level = [&](double db, double top) {
        const QRectF room(0, top, field.left() - kDot, height);
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, number(db));
    };
    paint_level(highest_, field.top());
    paint_level(lowest_, field.bottom() - height);
}

void PeakCurve::paint_levels(QPainter& painter, const QRectF& field) const {
    const QColor colour = palette().color(QPalette::Text);
    QPolygonF line;
    for (const auto& [steps, db] : means_of(levels_)) line << place(field, steps, db);
    painter.setPen(QPen(colour, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(line);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (const Point& level : levels_)
        painter.drawEllipse(place(field, level.steps, level.db), kDot, kDot);
}

void PeakCurve::paint_peak(QPainter& painter, const QRectF& field) const {
    if (!peak_) return;
    const double x = place(field, *peak_, lowest_).x();
    const QColor ground = palette().color(QPalette::Base);
    const QColor colour = palette().color(QPalette::Highlight);
    painter.setPen(QPen(contrast(colour, ground) >= kOutlineContrast
                            ? colour
                            : just_seen(palette().color(QPalette::Text), ground, kOutlineContrast),
                        3));
    painter.drawLine(QPointF(x, field.top()), QPointF(x, field.bottom()));
}

}  // namespace m47::peak
