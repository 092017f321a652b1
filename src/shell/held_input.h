// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWheelEvent>
#include <QWindow>
#include <deque>
#include <functional>
#include <memory>

namespace m47::shell {

/// What the user did while the meter was waited for, in its order, until the wait is over.
class HeldInput {
  public:
    /// Keeps what `event` is, for `window`; what has no use behind a wait (touches, drops) is left
    /// out.
    void hold(QWindow* window, const QEvent& event);
    bool empty() const { return held_.empty(); }

    /// The first, made anew, and its window, which is nullptr where it is gone or a box stands
    /// before it. Only while there is one.
    struct Event {
        QWindow* window;
        std::unique_ptr<QEvent> event;
    };
    Event take();

  private:
    struct Held {
        QPointer<QWindow> window;
        // An event that is kept would follow the pointer.
        std::function<std::unique_ptr<QEvent>()> make;
    };

    void hold_mouse(QWindow* window, const QMouseEvent& event);
    void hold_key(QWindow* window, const QKeyEvent& event);
    void hold_wheel(QWindow* window, const QWheelEvent& event);

    std::deque<Held> held_;
};

}  // namespace m47::shell
