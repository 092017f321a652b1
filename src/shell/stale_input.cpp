// SPDX-License-Identifier: GPL-3.0-or-later
#include "stale_input.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTimerEvent>
#include <QWheelEvent>

#include "busy_input.h"

namespace m47::shell {
namespace {

/// The widget of `window`, or of the menu open before it, at a place of the screen.
QWidget* widget_at(const QWindow* window, QPoint place) {
    QWidget* around = QApplication::activePopupWidget();
    if (!around) {
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget* one : windows)
            if (one->windowHandle() == window) around = one;
    }
    if (!around) return nullptr;
    QWidget* inside = around->childAt(around->mapFromGlobal(place));
    return inside ? inside : around;
}

bool is_kept_at(const QWindow* window, QPoint place) {
    const QWidget* target = widget_at(window, place);
    return target && press_is_kept(target, target->mapFromGlobal(place));
}

bool is_input(const QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::ShortcutOverride:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::TouchBegin:
        case QEvent::ContextMenu:
        case QEvent::Drop:
            return true;
        default:
            return false;
    }
}

}  // namespace

StaleInput::StaleInput() {
    qApp->installEventFilter(this);
    connect(&mark_, &QueueMark::passed, this, [this] { stale_ = false; });
}

void StaleInput::begin_pump() {
    pumping_ = true;
    stale_ = true;
    mark_.take_away();
    if (timer_ == 0) timer_ = startTimer(0);
}

// Timers rest while the meter is waited for, so the wait is over now.
void StaleInput::timerEvent(QTimerEvent* event) {
    killTimer(event->timerId());
    timer_ = 0;
    carry_out_held();
    mark_.set();
}

bool StaleInput::eventFilter(QObject* watched, QEvent* event) {
    // What the desktop brings comes to the window first.
    if (!watched->isWindowType() || event == carried_out_ || !is_input(*event)) return false;
    auto* window = static_cast<QWindow*>(watched);
    if (pumping_) return holds(window, event);
    carry_out_held();
    return drops(window, event);
}

bool StaleInput::holds(QWindow* window, QEvent* event) {
    if (acts_at_once(window, *event)) return false;
    if (event->type() == QEvent::MouseMove)
        // A pointer that is only passed over the screen changes nothing, nor one that drags what
        // acts at once.
        return bool(static_cast<QMouseEvent*>(event)->buttons() & ~at_once_);
    // Taken for a key of the screen, it becomes no shortcut.
    if (event->type() == QEvent::ShortcutOverride) event->accept();
    held_.hold(window, *event);
    return true;
}

bool StaleInput::acts_at_once(const QWindow* window, const QEvent& event) {
    if (event.type() == QEvent::ShortcutOverride || event.type() == QEvent::KeyPress ||
        event.type() == QEvent::KeyRelease)
        return key_acts_at_once(QApplication::focusWidget(), static_cast<const QKeyEvent&>(event));
    if (event.type() == QEvent::Wheel)
        return press_acts_at_once(
            widget_at(window, static_cast<const QWheelEvent&>(event).globalPosition().toPoint()));
    if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonDblClick &&
        event.type() != QEvent::MouseButtonRelease)
        return false;
    const auto& mouse = static_cast<const QMouseEvent&>(event);
    const bool press = event.type() != QEvent::MouseButtonRelease;
    const bool begun = at_once_.testFlag(mouse.button());
    const QWidget* target = widget_at(window, mouse.globalPosition().toPoint());
    at_once_.setFlag(mouse.button(), press && press_acts_at_once(target));
    return press ? at_once_.testFlag(mouse.button()) : begun;
}

void StaleInput::carry_out_held() {
    while (!held_.empty() && !pumping_) {
        const HeldInput::Event held = held_.take();
        if (held.window && !drops(held.window, held.event.get()))
            carry_out(held.window, held.event.get());
    }
}

void StaleInput::carry_out(QWindow* window, QEvent* event) {
    const auto* key =
        event->type() == QEvent::KeyPress ? static_cast<const QKeyEvent*>(event) : nullptr;
    // The toolkit looks for shortcuts before it hands a key on.
    if (QAction* action = key ? kept_action(*key) : nullptr) return action->trigger();
    carried_out_ = event;
    QCoreApplication::sendEvent(window, event);
    carried_out_ = nullptr;
}

bool StaleInput::drops(const QWindow* window, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return drops_press(window, *static_cast<QMouseEvent*>(event));
        case QEvent::MouseButtonRelease:
            return drops_release(window, *static_cast<QMouseEvent*>(event));
        case QEvent::Wheel:
            return stale_ &&
                   !is_kept_at(window,
                               static_cast<QWheelEvent*>(event)->globalPosition().toPoint());
        case QEvent::ShortcutOverride:
            // Taken for a key of the screen, it becomes no shortcut; then the key is dropped.
            if (!stale_ ||
                key_is_kept(QApplication::focusWidget(), *static_cast<QKeyEvent*>(event)))
                return false;
            event->accept();
            return true;
        case QEvent::KeyPress:
            return drops_key(*static_cast<QKeyEvent*>(event));
        case QEvent::KeyRelease:
            return drops_key_release(*static_cast<QKeyEvent*>(event));
        case QEvent::MouseMove:
            return false;
        default:
            return stale_;
    }
}

bool StaleInput::drops_press(const QWindow* window, const QMouseEvent& press) {
    const bool dropped = stale_ && !is_kept_at(window, press.globalPosition().toPoint());
    buttons_.setFlag(press.button(), dropped);
    return dropped;
}

bool StaleInput::drops_release(const QWindow* window, const QMouseEvent& release) {
    if (buttons_.testFlag(release.button())) {
        buttons_.setFlag(release.button(), false);
        return true;
    }
    // A press from before the wait ends as it began; but a menu takes the entry under the release.
    return stale_ && qobject_cast<QMenu*>(QApplication::activePopupWidget()) &&
           !is_kept_at(window, release.globalPosition().toPoint());
}

/// A key that is held goes on being dropped until it is let go: what repeats was begun in the wait.
bool StaleInput::drops_key(const QKeyEvent& key) {
    const bool held = key.isAutoRepeat() && keys_.contains(key.key());
    if (held || (stale_ && !key_is_kept(QApplication::focusWidget(), key))) {
        keys_.insert(key.key());
        return true;
    }
    keys_.remove(key.key());
    return false;
}

bool StaleInput::drops_key_release(const QKeyEvent& key) {
    if (key.isAutoRepeat()) return keys_.contains(key.key());
    return keys_.remove(key.key());
}

}  // namespace m47::shell
