// SPDX-License-Identifier: GPL-3.0-or-later
#include "busy_pump.h"

#include <QApplication>
#include <QEvent>
#include <QTimerEvent>
#include <chrono>
#include <utility>

namespace m47::shell {
namespace {

constexpr std::chrono::milliseconds kLookAgain{50};

}  // namespace

BusyPump::BusyPump() {
    qApp->installEventFilter(this);
}

BusyPump::~BusyPump() = default;

void BusyPump::pump() {
    if (pumping_) return;
    pumping_ = true;
    stale_input_.begin();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                    QEventLoop::X11ExcludeTimers);
    pumping_ = false;
}

bool BusyPump::eventFilter(QObject* watched, QEvent* event) {
    if (!pumping_ || event->type() != QEvent::Close) return QObject::eventFilter(watched, event);
    auto* window = qobject_cast<QWidget*>(watched);
    if (!window) return QObject::eventFilter(watched, event);
    event->ignore();
    // A timer, since timers rest until the running handler has ended.
    if (closing_.isEmpty()) startTimer(0);
    if (!closing_.contains(window)) closing_.append(window);
    return true;
}

void BusyPump::timerEvent(QTimerEvent* event) {
    killTimer(event->timerId());
    // The box in front belongs to a handler that still runs: its screen must not go under it.
    if (QApplication::activeModalWidget()) {
        startTimer(kLookAgain);
        return;
    }
    const auto windows = std::exchange(closing_, {});
    for (const auto& window : windows)
        if (window) window->close();
}

}  // namespace m47::shell
