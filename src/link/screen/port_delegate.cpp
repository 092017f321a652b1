// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_delegate.h"

#include <QApplication>
#include <QPainter>

namespace m47::link {
namespace {

/// Of the column with the numbers, in characters.
constexpr int kNumberColumns = 5;

int number_width(const QStyleOptionViewItem& option) {
    return option.fontMetrics.averageCharWidth() * kNumberColumns;
}

QString description_of(const QModelIndex& index) {
    return index.data(PortDelegate::kDescriptionRole).toString();
}

}  // namespace

void PortDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->font.setBold(index.data(kInUseRole).toBool());
    // Drawn as disabled; it can be chosen all the same.
    if (description_of(index).isEmpty()) option->state &= ~QStyle::State_Enabled;
}

void PortDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem shown = option;
    initStyleOption(&shown, index);
    const bool selected = shown.state & QStyle::State_Selected;
    const QRect room = shown.rect.adjusted(number_width(shown), 0, 0, 0);
    painter->save();
    painter->setFont(shown.font);
    const auto group = shown.state & QStyle::State_Enabled ? QPalette::Normal : QPalette::Disabled;
    painter->setPen(
        shown.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(
        room, Qt::AlignLeft | Qt::AlignVCenter,
        painter->fontMetrics().elidedText(description_of(index), Qt::ElideMiddle, room.width()));
    painter->restore();
}

QSize PortDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem shown = option;
    initStyleOption(&shown, index);
    const QSize number = QStyledItemDelegate::sizeHint(option, index);
    const int text = QFontMetrics(shown.font).horizontalAdvance(description_of(index));
    return {number_width(shown) + text + shown.fontMetrics.averageCharWidth(), number.height()};
}

}  // namespace m47::link
