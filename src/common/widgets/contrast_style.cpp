// SPDX-License-Identifier: GPL-3.0-or-later
#include "contrast_style.h"

#include <QIconEngine>
#include <QPainter>
#include <QStyleOption>
#include <functional>
#include <utility>

#include "contrast.h"

namespace m47 {
namespace {

/// More than what is asked for: soft edges lose some of it, and frames within frames are lighter or
/// darker than the window.
constexpr double kOutline = kOutlineContrast * 1.4;
/// On windows as dark as that people want all the contrast there is.
constexpr int kHighContrast = 24;  // lightness, 0 to 255
constexpr QLatin1String kFusion("fusion");
constexpr int kEdge = 120;  // per cent
constexpr double kRounding = 2;
/// A small circle has hardly a pixel that it fills whole.
constexpr double kCircleWidth = 1.5;

bool has_outline(QStyle::PrimitiveElement element, const QStyleOption* option) {
    switch (element) {
        case QStyle::PE_PanelLineEdit:
            return static_cast<const QStyleOptionFrame*>(option)->lineWidth > 0;
        case QStyle::PE_FrameLineEdit:
        case QStyle::PE_Frame:
        case QStyle::PE_IndicatorCheckBox:
        case QStyle::PE_IndicatorRadioButton:
            return true;
        case QStyle::PE_PanelButtonCommand: {
            const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
            return !button || !(button->features & QStyleOptionButton::Flat);
        }
        default:
            return false;
    }
}

/// Where the style draws its own: this one comes over it.
QRectF outline_of(QStyle::PrimitiveElement element, const QStyleOption* option) {
    const QRectF whole = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    return element == QStyle::PE_PanelButtonCommand ? whole.adjusted(0, 1, 0, 0) : whole;
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

void ContrastStyle::drawControl(ControlElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
    if (element != CE_ToolBar || baseStyle()->name() != kFusion)
        return QProxyStyle::drawControl(element, option, painter, widget);
    // That style draws the edges as lines of see-through pixels, each handed to threads that it
    // starts for them: a tenth of the whole start.
    painter->fillRect(option->rect, option->palette.window());
    QRect edge = option->rect;
    edge.setTop(edge.bottom());
    painter->fillRect(edge, option->palette.color(QPalette::Window).darker(kEdge));
}

QColor outline_colour(const QPalette& palette, bool focused) {
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    const QColor mark = palette.color(QPalette::Highlight);
    if (focused) return contrast(mark, window) >= kOutline ? mark : text;
    return window.lightness() < kHighContrast ? text : just_seen(text, window, kOutline);
}

void ContrastStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                  QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    // What cannot be used may be fainter.
    if (!(option->state & State_Enabled) || !has_outline(element, option)) return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool circle = element == PE_IndicatorRadioButton;
    const QColor colour = outline_colour(option->palette, option->state & State_HasFocus);
    painter->setPen(QPen(colour, circle ? kCircleWidth : 1));
    painter->setBrush(Qt::NoBrush);
    const QRectF outline = outline_of(element, option);
    if (circle)
        painter->drawEllipse(outline);
    else
        painter->drawRoundedRect(outline, kRounding, kRounding);
    painter->restore();
}

}  // namespace m47
