// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QResizeEvent>
#include <QTimer>
#include <QWindow>

namespace m47::shell {

/// Tells when all that the window system has brought so far has been handed on. Input that was left
/// lying while the meter was waited for need not come with the next turn of the event loop: under
/// X11 it comes with whatever is brought next, seconds later with the mouse. So something is asked
/// of the X server, a new size of a window that is never shown, whose answer comes behind all that.
class QueueMark : public QWindow {
    Q_OBJECT
  public:
    QueueMark();

    /// Puts the mark behind all that is there now; one that was set before is taken away.
    void set();
    void take_away();

  Q_SIGNALS:
    /// What was there has been handed on; also where the answer has not come within two seconds.
    void passed();

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void pass();

    int marks_ = 0;
    int asked_width_ = 0;
    QTimer overdue_;
};

}  // namespace m47::shell
