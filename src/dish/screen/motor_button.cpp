// SPDX-License-Identifier: GPL-3.0-or-later
#include "motor_button.h"

#include <QStyleOptionButton>
#include <QStylePainter>

namespace m47::dish {
namespace {

// Room beside and above the caption, in logical pixels.
constexpr int kSideMargin = 6;
constexpr int kTopMargin = 3;

}  // namespace

MotorButton::MotorButton(QWidget* parent) : QPushButton(parent) {
    setAutoDefault(true);
    setAttribute(Qt::WA_Hover);
}

QSize MotorButton::sizeHint() const {
    const QSize caption = fontMetrics().size(Qt::TextShowMnemonic, text());
    return caption + QSize(2 * kSideMargin, 2 * kTopMargin);
}

QSize MotorButton::minimumSizeHint() const {
    return sizeHint();
}

void MotorButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButtonBevel, option);
    painter.drawItemText(rect().adjusted(kSideMargin, 0, -kSideMargin, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, palette(),
                         isEnabled(), text(), QPalette::ButtonText);
}

}  // namespace m47::dish
