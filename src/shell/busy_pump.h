// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include "stale_input.h"

namespace m47::shell {

/// Keeps the windows alive while the meter is being waited for: they repaint and answer the
/// desktop, but no timer is acted on, and of what the user does alone what acts at once, such as
/// [Stop]. Of the other clicks and keys only those that change nothing but the view are carried
/// out, when the wait is over; in a long one the rest are drawn as what cannot be used. Timers come
/// late and once, and a window that was told to close closes afterwards, once no box stands before
/// it.
class BusyPump : public QObject {
    Q_OBJECT
  public:
    BusyPump();
    ~BusyPump() override;

    void pump();
    /// True inside pump(): what arrives now must not start anything.
    bool pumping() const { return pumping_; }
    /// Told of a window that was told to close and does so only later.
    std::function<void()> on_close_put_off;
    /// Told before those close.
    std::function<void()> on_closing_now;

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    void dim_keys();

    bool pumping_ = false;
    int dimming_ = 0;     ///< timer, which comes when the wait is over
    QElapsedTimer wait_;  ///< since its first pump
    StaleInput stale_input_;
    QList<QPointer<QWidget>> closing_;
};

}  // namespace m47::shell
