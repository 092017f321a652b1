// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_keys.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace m47::plans {
namespace {

bool goes_to_another_control(Qt::FocusReason reason) {
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason &&
           reason != Qt::MenuBarFocusReason;
}

bool types(const QKeyEvent& key) {
    const bool leaves = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
    const bool shortcut = key.modifiers() & (Qt::AltModifier | Qt::ControlModifier);
    return !leaves && !shortcut && !key.text().isEmpty();
}

}  // namespace

LeaveFilter::LeaveFilter(QWidget* box, std::function<void()> left) : left_(std::move(left)) {
    box->installEventFilter(this);
}

bool LeaveFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut &&
        goes_to_another_control(static_cast<QFocusEvent*>(event)->reason()))
        left_();
    return QObject::eventFilter(watched, event);
}

TypedKeyFilter::TypedKeyFilter(QWidget* list, std::function<void()> pressed)
    : pressed_(std::move(pressed)) {
    list->installEventFilter(this);
}

bool TypedKeyFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !types(*static_cast<QKeyEvent*>(event)))
        return QObject::eventFilter(watched, event);
    pressed_();
    return true;
}

}  // namespace m47::plans
