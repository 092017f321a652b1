// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <QMouseEvent>
#include <QObject>
#include <QSet>
#include <QWidget>
#include <QWindow>

#include "queue_mark.h"

namespace m47::shell {

/// What the user did while the meter was waited for comes out of the queue when the wait is over,
/// or in front of a box that opens then. A click or key that would delete, write or send is dropped
/// then: it was meant for the screen as it was before. What only changes the view is carried out.
class StaleInput : public QObject {
    Q_OBJECT
  public:
    StaleInput();

    /// The meter is being waited for: what is in the queue when the wait ends is stale.
    void begin();

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    bool drops_press(const QWindow* window, const QMouseEvent& press);
    bool drops_release(const QWindow* window, const QMouseEvent& release);
    bool drops_key(const QKeyEvent& key);
    bool drops_key_release(const QKeyEvent& key);

    bool stale_ = false;
    int timer_ = 0;
    QueueMark mark_;
    /// Buttons and keys that are still down after their press was dropped.
    Qt::MouseButtons buttons_;
    QSet<int> keys_;
};

}  // namespace m47::shell
