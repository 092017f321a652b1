// SPDX-License-Identifier: GPL-3.0-or-later
#include "lamp.h"

#include <QPainter>

namespace m47 {

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

void Lamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(colour_);
    const qreal side = qMin(width(), height()) - 2;
    painter.drawEllipse(QRectF((width() - side) / 2, (height() - side) / 2, side, side));
}

}  // namespace m47
