// SPDX-License-Identifier: GPL-3.0-or-later
#include "key_filter.h"

#include <QKeyEvent>
#include <algorithm>

namespace m47 {

KeyFilter::KeyFilter(QWidget* box, const QString& accepted) : QObject(box), accepted_(accepted) {
    // A composed character would come in past the key events.
    box->setAttribute(Qt::WA_InputMethodEnabled, false);
    box->installEventFilter(this);
}

bool KeyFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && refuses(*static_cast<QKeyEvent*>(event))) return true;
    return QObject::eventFilter(watched, event);
}

bool KeyFilter::refuses(const QKeyEvent& key) const {
    // A text box takes nothing from these as text; every other modifier can still make a character.
    const Qt::KeyboardModifiers modifiers = key.modifiers();
    if (modifiers == Qt::ControlModifier || modifiers == (Qt::ControlModifier | Qt::ShiftModifier))
        return false;
    const QString text = key.text();
    return std::any_of(text.begin(), text.end(), [this](QChar character) {
        const bool control = character < u' ' || character == QChar(127);
        return !control && !accepted_.contains(character);
    });
}

WheelGuard::WheelGuard(QComboBox* list) : QObject(list) {
    list->installEventFilter(this);
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel) return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}

}  // namespace m47
