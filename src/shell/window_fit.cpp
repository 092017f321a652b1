// SPDX-License-Identifier: GPL-3.0-or-later
#include "window_fit.h"

#include <QEvent>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QWindow>
#include <chrono>

namespace m47::shell {
namespace {

/// Desktops tell of the frame a moment after the window is there, slow ones later.
constexpr std::chrono::milliseconds kFrameIsTold[] = {std::chrono::milliseconds(100),
                                                      std::chrono::milliseconds(1000)};

constexpr Qt::WindowStates kFilling =
    Qt::WindowMaximized | Qt::WindowFullScreen | Qt::WindowMinimized;

}  // namespace

QRect kept_inside(const QRect& rect, const QRect& room) {
    const QSize size = rect.size().boundedTo(room.size());
    const int x = qBound(room.left(), rect.left(), room.left() + room.width() - size.width());
    const int y = qBound(room.top(), rect.top(), room.top() + room.height() - size.height());
    return {QPoint(x, y), size};
}

WindowFit::WindowFit(QWidget* window) : QObject(window), window_(window) {
    window->installEventFilter(this);
}

QMargins WindowFit::guessed_frame() const {
    const QStyle* style = window_->style();
    const int edge = style->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    return {edge, style->pixelMetric(QStyle::PM_TitleBarHeight) + edge, edge, edge};
}

void WindowFit::place(const QRect& rect, const QRect& room) {
    const QMargins frame = guessed_frame();
    const QSize outer = rect.size().grownBy(frame);
    const QRect inside = kept_inside({rect.topLeft(), outer}, room);
    window_->move(inside.topLeft());
    size(rect.size(), room);
}

void WindowFit::size(const QSize& size, const QRect& room) {
    const QMargins frame = guessed_frame();
    given_ = size.grownBy(frame).boundedTo(room.size()).shrunkBy(frame);
    window_->resize(given_);
}

void WindowFit::correct(const QMargins& frame, const QRect& room) {
    if (window_->size() != given_ || (window_->windowState() & kFilling)) return;
    const QRect is = QRect(window_->geometry()).marginsAdded(frame);
    const QRect inside = kept_inside(is, room);
    if (inside == is) return;
    given_ = inside.size().shrunkBy(frame);
    window_->resize(given_);
    window_->move(inside.topLeft());
}

void WindowFit::look() {
    const QWindow* handle = window_->windowHandle();
    if (handle) correct(handle->frameMargins(), window_->screen()->availableGeometry());
}

bool WindowFit::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && !event->spontaneous())
        for (const auto& later : kFrameIsTold) QTimer::singleShot(later, this, [this] { look(); });
    return QObject::eventFilter(watched, event);
}

}  // namespace m47::shell
