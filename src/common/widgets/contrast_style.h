// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProxyStyle>

namespace m47 {

/// The desktop's style with outlines that are seen in every palette: many styles draw those of
/// boxes, options and buttons in a tone of the window that is hardly darker than it.
class ContrastStyle : public QProxyStyle {
  public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget = nullptr) const override;
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option = nullptr,
                       const QWidget* widget = nullptr) const override;
};

/// The colour of an outline on the windows of `palette`; that of what has the keyboard where it is
/// `focused`.
QColor outline_colour(const QPalette& palette, bool focused);

}  // namespace m47
