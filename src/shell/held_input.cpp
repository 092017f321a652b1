// SPDX-License-Identifier: GPL-3.0-or-later
#include "held_input.h"

#include <QApplication>
#include <QWidget>

namespace m47::shell {
namespace {

bool stands_behind_a_box(const QWindow* window) {
    const QWidget* box = QApplication::activeModalWidget();
    const QWidget* popup = QApplication::activePopupWidget();
    return box && box->windowHandle() != window && !(popup && popup->windowHandle() == window);
}

}  // namespace

void HeldInput::hold(QWindow* window, const QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
            return hold_mouse(window, static_cast<const QMouseEvent&>(event));
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            return hold_key(window, static_cast<const QKeyEvent&>(event));
        case QEvent::Wheel:
            return hold_wheel(window, static_cast<const QWheelEvent&>(event));
        default:
            return;
    }
}

void HeldInput::hold_mouse(QWindow* window, const QMouseEvent& event) {
    held_.push_back({window, [type = event.type(), place = event.position(),
                              on_screen = event.globalPosition(), button = event.button(),
                              buttons = event.buttons(), modifiers = event.modifiers()] {
                         return std::make_unique<QMouseEvent>(type, place, on_screen, button,
                                                              buttons, modifiers);
                     }});
}

void HeldInput::hold_key(QWindow* window, const QKeyEvent& event) {
    held_.push_back({window, [type = event.type(), key = event.key(), modifiers = event.modifiers(),
                              text = event.text(), repeats = event.isAutoRepeat()] {
                         return std::make_unique<QKeyEvent>(type, key, modifiers, text, repeats);
                     }});
}

void HeldInput::hold_wheel(QWindow* window, const QWheelEvent& event) {
    held_.push_back({window, [place = event.position(), on_screen = event.globalPosition(),
                              pixels = event.pixelDelta(), angle = event.angleDelta(),
                              buttons = event.buttons(), modifiers = event.modifiers(),
                              phase = event.phase(), inverted = event.inverted()] {
                         return std::make_unique<QWheelEvent>(place, on_screen, pixels, angle,
                                                              buttons, modifiers, phase, inverted);
                     }});
}

HeldInput::Event HeldInput::take() {
    const Held first = std::move(held_.front());
    held_.pop_front();
    QWindow* window = first.window;
    return {window && !stands_behind_a_box(window) ? window : nullptr, first.make()};
}

}  // namespace m47::shell
