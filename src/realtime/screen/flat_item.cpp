// SPDX-License-Identifier: GPL-3.0-or-later
#include "flat_item.h"

#include <QPainter>
#include <QStyle>

namespace m47::realtime {
namespace {

// Room beside and above the caption, in logical pixels.
constexpr int kSideMargin = 3;
constexpr int kTopMargin = 1;

}  // namespace

FlatItem::FlatItem(QWidget* parent) : QPushButton(parent) {
    setFlat(true);
    setAutoDefault(true);
    setAttribute(Qt::WA_Hover);
}

QSize FlatItem::sizeHint() const {
    const QSize caption = fontMetrics().size(Qt::TextShowMnemonic, text());
    return caption + QSize(2 * kSideMargin, 2 * kTopMargin);
}

QSize FlatItem::minimumSizeHint() const {
    return sizeHint();
}

void FlatItem::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const bool marked = isEnabled() && (underMouse() || hasFocus() || isDown());
    if (marked) {
        const QColor mark = palette().color(QPalette::Highlight);
        painter.fillRect(rect(), isDown() ? mark.darker() : mark);
    }
    style()->drawItemText(&painter, rect().adjusted(kSideMargin, 0, -kSideMargin, 0),
                          Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, palette(),
                          isEnabled(), text(),
                          marked ? QPalette::HighlightedText : QPalette::ButtonText);
}

}  // namespace m47::realtime
