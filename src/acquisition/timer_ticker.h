// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTimer>

#include "ticker.h"

namespace m47::acquisition {

/// A tick of the screen's thread. It is steady: a clock that is set does not disturb it.
class TimerTicker : public Ticker {
  public:
    TimerTicker();

    void start() override;
    void stop() override;
    bool running() const override;

    QTimer& timer() { return timer_; }

  private:
    QTimer timer_;
};

}  // namespace m47::acquisition
