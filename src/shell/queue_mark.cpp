// SPDX-License-Identifier: GPL-3.0-or-later
#include "queue_mark.h"

#include <QGuiApplication>

namespace m47::shell {
namespace {

constexpr int kOverdue = 2000;  // ms
constexpr int kNarrowest = 10;
constexpr int kWidths = 100;

}  // namespace

QueueMark::QueueMark() {
    // A window manager has no say in it.
    setFlags(Qt::ToolTip | Qt::BypassWindowManagerHint);
    overdue_.setSingleShot(true);
    connect(&overdue_, &QTimer::timeout, this, [this] { pass(); });
}

void QueueMark::set() {
    // Elsewhere nothing is left lying: one turn more and it has come.
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return overdue_.start(0);
    if (!handle()) create();
    // Another width each time, so that the answer to an earlier mark is not taken for this one's.
    asked_width_ = kNarrowest + ++marks_ % kWidths;
    overdue_.start(kOverdue);
    resize(asked_width_, kNarrowest);
}

void QueueMark::take_away() {
    asked_width_ = 0;
    overdue_.stop();
}

void QueueMark::resizeEvent(QResizeEvent* event) {
    if (asked_width_ != 0 && event->size().width() == asked_width_) pass();
}

void QueueMark::pass() {
    take_away();
    Q_EMIT passed();
}

}  // namespace m47::shell
