// SPDX-License-Identifier: GPL-3.0-or-later
#include "timer_ticker.h"

#include <chrono>

namespace m47::acquisition {

TimerTicker::TimerTicker() {
    timer_.setInterval(std::chrono::seconds(1));
    timer_.setTimerType(Qt::PreciseTimer);
}

void TimerTicker::start() {
    timer_.start();
}

void TimerTicker::stop() {
    timer_.stop();
}

bool TimerTicker::running() const {
    return timer_.isActive();
}

}  // namespace m47::acquisition
