// SPDX-License-Identifier: GPL-3.0-or-later
#include "contrast_style.h"

#include <QPainter>
#include <QStyleOption>

namespace m47 {
namespace {

constexpr int kDarkestWithOutline = 24;  // lightness of the window, 0 to 255

bool is_box(QStyle::PrimitiveElement element) {
    return element == QStyle::PE_PanelLineEdit || element == QStyle::PE_FrameLineEdit ||
           element == QStyle::PE_IndicatorCheckBox || element == QStyle::PE_IndicatorRadioButton;
}

}  // namespace

void ContrastStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                  QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool framed =
        element != PE_PanelLineEdit || static_cast<const QStyleOptionFrame*>(option)->lineWidth > 0;
    const bool dark = option->palette.window().color().lightness() < kDarkestWithOutline;
    // What has the focus shows that by an outline of its own.
    const bool focused = option->state & State_HasFocus;
    if (!is_box(element) || !framed || !dark || focused) return;
    painter->save();
    painter->setPen(option->palette.color(
        option->state & State_Enabled ? QPalette::Normal : QPalette::Disabled, QPalette::Text));
    painter->setBrush(Qt::NoBrush);
    const QRect box = option->rect.adjusted(0, 0, -1, -1);
    if (element == PE_IndicatorRadioButton)
        painter->drawEllipse(box);
    else
        painter->drawRect(box);
    painter->restore();
}

}  // namespace m47
