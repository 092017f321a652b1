// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <QMouseEvent>
#include <QObject>
#include <QSet>
#include <QWidget>
#include <QWindow>

#include "held_input.h"
#include "queue_mark.h"

namespace m47::shell {

/// What the user does while the meter is waited for is held until the wait is over, or a box opens
/// in front of the window. A click or key that would delete, write or send is dropped then: it was
/// meant for the screen as it was before. What only changes the view is carried out. Alone a
/// control that acts at once, see act_while_busy, is not waited with.
class StaleInput : public QObject {
    Q_OBJECT
  public:
    StaleInput();

    /// The meter is being waited for: what comes until end_pump(), and what is in the queue when
    /// the wait ends, is stale.
    void begin_pump();
    void end_pump() { pumping_ = false; }

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    /// What a control that acts at once does not take is held.
    bool holds(QWindow* window, QEvent* event);
    bool acts_at_once(const QWindow* window, const QEvent& event);
    void carry_out_held();
    void carry_out(QWindow* window, QEvent* event);
    /// Whether what came behind the wait is dropped.
    bool drops(const QWindow* window, QEvent* event);
    bool drops_press(const QWindow* window, const QMouseEvent& press);
    bool drops_release(const QWindow* window, const QMouseEvent& release);
    bool drops_key(const QKeyEvent& key);
    bool drops_key_release(const QKeyEvent& key);

    bool stale_ = false;
    bool pumping_ = false;
    HeldInput held_;
    const QEvent* carried_out_ = nullptr;  ///< now, of what was held
    Qt::MouseButtons at_once_;             ///< that were pressed on a control that acts at once
    int timer_ = 0;
    QueueMark mark_;
    /// Buttons and keys that are still down after their press was dropped.
    Qt::MouseButtons buttons_;
    QSet<int> keys_;
};

}  // namespace m47::shell
