// SPDX-License-Identifier: GPL-3.0-or-later
#include "busy_style.h"

#include <QAbstractButton>
#include <QStyleOption>

#include "busy_input.h"

namespace m47 {
namespace {

bool is_dropped(const QWidget* widget) {
    return busy_is_shown() && qobject_cast<const QAbstractButton*>(widget) &&
           !press_acts_at_once(widget) && !press_is_kept(widget, {});
}

void dim(QStyleOption& option) {
    option.state &= ~QStyle::State_Enabled;
    option.palette.setCurrentColorGroup(QPalette::Disabled);
}

}  // namespace

void BusyStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (!button || !is_dropped(widget))
        return ContrastStyle::drawControl(element, option, painter, widget);
    QStyleOptionButton dimmed(*button);
    dim(dimmed);
    ContrastStyle::drawControl(element, &dimmed, painter, widget);
}

void BusyStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
    const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
    if (!button || !is_dropped(widget))
        return ContrastStyle::drawComplexControl(control, option, painter, widget);
    QStyleOptionToolButton dimmed(*button);
    dim(dimmed);
    ContrastStyle::drawComplexControl(control, &dimmed, painter, widget);
}

}  // namespace m47
