// SPDX-License-Identifier: GPL-3.0-or-later
#include "busy_pump.h"

#include <QApplication>
#include <QEvent>
#include <QTimerEvent>
#include <chrono>
#include <utility>

#include "busy_input.h"

namespace m47::shell {
namespace {

constexpr std::chrono::milliseconds kLookAgain{50};
/// Of a shorter one nobody needs to be told; the keys would only flicker.
constexpr std::chrono::milliseconds kLongWait{300};

}  // namespace

BusyPump::BusyPump() {
    qApp->installEventFilter(this);
}

BusyPump::~BusyPump() {
    forget_busy();
}

void BusyPump::pump() {
    if (pumping_) return;
    pumping_ = true;
    dim_keys();
    stale_input_.begin_pump();
    QCoreApplication::processEvents(QEventLoop::X11ExcludeTimers);
    stale_input_.end_pump();
    pumping_ = false;
}

void BusyPump::dim_keys() {
    if (dimming_ == 0) {
        dimming_ = startTimer(0);
        wait_.start();
    } else if (wait_.hasExpired(kLongWait.count())) {
        show_busy(true);
    }
}

bool BusyPump::eventFilter(QObject* watched, QEvent* event) {
    if (!pumping_ || event->type() != QEvent::Close) return QObject::eventFilter(watched, event);
    auto* window = qobject_cast<QWidget*>(watched);
    if (!window) return QObject::eventFilter(watched, event);
    event->ignore();
    // A timer, since timers rest until the running handler has ended.
    if (closing_.isEmpty()) startTimer(0);
    if (!closing_.contains(window)) closing_.append(window);
    if (on_close_put_off) on_close_put_off();
    return true;
}

void BusyPump::timerEvent(QTimerEvent* event) {
    killTimer(event->timerId());
    if (event->timerId() == dimming_) {
        dimming_ = 0;
        show_busy(false);
        return;
    }
    // The box in front belongs to a handler that still runs: its screen must not go under it.
    if (QApplication::activeModalWidget()) {
        startTimer(kLookAgain);
        return;
    }
    const auto windows = std::exchange(closing_, {});
    if (on_closing_now) on_closing_now();
    for (const auto& window : windows)
        if (window) window->close();
}

}  // namespace m47::shell
