// SPDX-License-Identifier: GPL-3.0-or-later
#include "read_out.h"

#include <QPainter>
#include <QStyle>

#include "contrast.h"

namespace m47 {
namespace {

constexpr qreal kEnlarged = 1.3;
constexpr int kTextGap = 5;
/// As long as the meter writes a value.
constexpr const char* kLongest = "<0.0E-00";
/// What is left of the text colour in a dimmed value, which is to be read all the same.
constexpr double kDimmed = 0.6;

}  // namespace

ReadOut::ReadOut(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    follow(font());
}

void ReadOut::follow(const QFont& font) {
    QFont large = font;
    large.setBold(true);
    large.setPointSizeF(font.pointSizeF() * kEnlarged);
    setFont(large);
    updateGeometry();
}

void ReadOut::set_dimmed(bool dimmed) {
    if (dimmed == dimmed_) return;
    dimmed_ = dimmed;
    update();
}

QSize ReadOut::sizeHint() const {
    const int frame = 2 * frameWidth();
    const int width = fontMetrics().horizontalAdvance(QString::fromLatin1(kLongest));
    return {width + 2 * kTextGap + frame, fontMetrics().height() + frame};
}

void ReadOut::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawFrame(&painter);
    const QColor colour = palette().color(QPalette::WindowText);
    const QColor ground = palette().color(QPalette::Window);
    painter.setPen(dimmed_ ? mixed(colour, ground, kDimmed) : colour);
    painter.drawText(contentsRect().adjusted(kTextGap, 0, -kTextGap, 0),
                     Qt::AlignRight | Qt::AlignVCenter, text());
}

}  // namespace m47
