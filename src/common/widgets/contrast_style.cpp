// SPDX-License-Identifier: GPL-3.0-or-later
#include "contrast_style.h"

#include <QIconEngine>
#include <QPainter>
#include <QStyleOption>
#include <functional>
#include <utility>

namespace m47 {
namespace {

constexpr int kDarkestWithOutline = 24;  // lightness of the window, 0 to 255

bool is_box(QStyle::PrimitiveElement element) {
    return element == QStyle::PE_PanelLineEdit || element == QStyle::PE_FrameLineEdit ||
           element == QStyle::PE_IndicatorCheckBox || element == QStyle::PE_IndicatorRadioButton;
}

/// An icon of the desktop's, made when it is first painted: reading the pictures takes a start
/// longer than all its windows.
class LateIcon : public QIconEngine {
  public:
    explicit LateIcon(std::function<QIcon()> make) : make_(std::move(make)) {}

    QIconEngine* clone() const override { return new LateIcon(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return icon().pixmap(size, 1.0, mode, state);
    }

  private:
    const QIcon& icon() {
        if (icon_.isNull()) icon_ = make_();
        return icon_;
    }

    std::function<QIcon()> make_;
    QIcon icon_;
};

}  // namespace

QIcon ContrastStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                  const QWidget* widget) const {
    const auto usual = [this, which] { return QProxyStyle::standardIcon(which); };
    const bool extension =
        which == SP_ToolBarHorizontalExtensionButton || which == SP_ToolBarVerticalExtensionButton;
    return extension ? QIcon(new LateIcon(usual))
                     : QProxyStyle::standardIcon(which, option, widget);
}

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
