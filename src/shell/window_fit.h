// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMargins>
#include <QObject>
#include <QRect>
#include <QWidget>

namespace m47::shell {

/// `rect` moved, and made smaller where it has to be, so that it lies wholly inside `room`.
QRect kept_inside(const QRect& rect, const QRect& room);

/// Keeps a window with its frame on the screen. How large the frame is, the desktop tells only once
/// the window is to be seen: until then the style's measures stand in for it, and what they got
/// wrong is put right then.
class WindowFit : public QObject {
    Q_OBJECT
  public:
    explicit WindowFit(QWidget* window);

    /// Gives the window, which is not shown yet, a size and its frame's place, as far as
    /// `room`, the part of a screen that is free for windows, lets it.
    void place(const QRect& rect, const QRect& room);
    /// The same with no wish for a place: where the desktop puts windows.
    void size(const QSize& size, const QRect& room);

    /// Puts a window inside `room` whose frame is known, `frame` wide around it. One that somebody
    /// has given another size since, or that fills the screen, is left alone.
    void correct(const QMargins& frame, const QRect& room);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QMargins guessed_frame() const;
    void look();

    QWidget* window_;
    QSize given_;  ///< what the window has from here; another one is somebody else's
};

}  // namespace m47::shell
