// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QList>
#include <QRectF>
#include <QString>
#include <QWidget>

namespace m47::shell {

/// A text that a widget paints itself, where no child stands for it.
struct PaintedText {
    QString text;
    QRectF room;  ///< of its letters, in the widget
    QColor colour;
};

/// What `widget` would write into itself now; it need not be visible.
QList<PaintedText> painted_texts(QWidget& widget);

}  // namespace m47::shell
