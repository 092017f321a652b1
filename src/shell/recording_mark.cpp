// SPDX-License-Identifier: GPL-3.0-or-later
#include "recording_mark.h"

#include <QPainter>

namespace m47::shell {
namespace {

/// Seen on a light and on a dark status line.
constexpr QRgb kDot = 0xFFE01B24;

}  // namespace

RecordingMark::RecordingMark(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("recording"));
}

QSize RecordingMark::sizeHint() const {
    const int side = fontMetrics().height();
    return {side, side};
}

void RecordingMark::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgb(kDot));
    const double radius = fontMetrics().ascent() / 2.0;
    painter.drawEllipse(QRectF(rect()).center(), radius, radius);
}

}  // namespace m47::shell
