// SPDX-License-Identifier: GPL-3.0-or-later
#include "lamp.h"

#include <QPainter>

#include "contrast_style.h"

namespace m47 {
namespace {

/// The radius of the point in a dimmed lamp, as a share of its side.
constexpr qreal kPoint = 0.17;

}  // namespace

Lamp::Lamp(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Lamp::sizeHint() const {
    const int side = fontMetrics().height();
    return {side, side};
}

void Lamp::set_colour(const QColor& colour) {
    if (colour == colour_) return;
    colour_ = colour;
    update();
}

void Lamp::set_dimmed(bool dimmed) {
    if (dimmed == dimmed_) return;
    dimmed_ = dimmed;
    update();
}

void Lamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = qMin(width(), height()) - 1;
    const QRectF ring((width() - side) / 2, (height() - side) / 2, side, side);
    painter.setPen(outline_colour(palette(), false));
    painter.setBrush(dimmed_ ? QBrush() : QBrush(colour_));
    painter.drawEllipse(ring);
    if (!dimmed_) return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour_);
    painter.drawEllipse(ring.center(), side * kPoint, side * kPoint);
}

}  // namespace m47
