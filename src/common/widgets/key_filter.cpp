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

ListKeyFilter::ListKeyFilter(QComboBox* list) : QObject(list) {
    list->installEventFilter(this);
}

bool ListKeyFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    switch (key->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
            // With Alt they open the list.
            return !(key->modifiers() & Qt::AltModifier);
        case Qt::Key_Space:
        case Qt::Key_F4:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return QObject::eventFilter(watched, event);
        default:
            return !(key->modifiers() & (Qt::AltModifier | Qt::ControlModifier));
    }
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
