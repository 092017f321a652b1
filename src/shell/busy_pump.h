// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include "stale_input.h"

namespace m47::shell {

/// Keeps the windows alive while the meter is being waited for: they repaint and answer the
/// desktop, but nothing that the user does and no timer is acted on. Of the clicks and keys that
/// stay in the queue meanwhile only those that change nothing but the view are carried out, timers
/// come late and once, and a window that was told to close closes afterwards, once no box stands
/// before it.
class BusyPump : public QObject {
    Q_OBJECT
  public:
    BusyPump();
    ~BusyPump() override;

    void pump();
    /// True inside pump(): what arrives now must not start anything.
    bool pumping() const { return pumping_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    bool pumping_ = false;
    StaleInput stale_input_;
    QList<QPointer<QWidget>> closing_;
};

}  // namespace m47::shell
