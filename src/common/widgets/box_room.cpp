// SPDX-License-Identifier: GPL-3.0-or-later
#include "box_room.h"

#include <QStyle>
#include <QStyleOptionFrame>

namespace m47 {
namespace {

/// What a text box keeps free on both sides of its text.
constexpr int kTextMargins = 6;

}  // namespace

void fit_to_text(QLineEdit& box, const QString& longest) {
    QStyleOptionFrame option;
    option.initFrom(&box);
    option.lineWidth = box.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &box);
    const QSize text(box.fontMetrics().horizontalAdvance(longest) + kTextMargins, 0);
    box.setFixedWidth(
        box.style()->sizeFromContents(QStyle::CT_LineEdit, &option, text, &box).width());
}

void keep_room(QWidget& widget) {
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget.setSizePolicy(policy);
    // To a layout what was never shown is not there, and a frame without its controls is small.
    for (QWidget* control : widget.findChildren<QWidget*>())
        if (!control->isWindow() && !control->testAttribute(Qt::WA_WState_ExplicitShowHide))
            control->show();
}

}  // namespace m47
