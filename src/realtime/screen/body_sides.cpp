// SPDX-License-Identifier: GPL-3.0-or-later
#include "body_sides.h"

#include <QEvent>
#include <QScrollBar>

namespace m47::realtime {
namespace {

/// What a window and the area of the screens put around a screen that fills them.
constexpr int kFrames = 24;
/// The controls scroll sideways rather than take the page all its room.
constexpr int kLeastControls = 200;

}  // namespace

BodySides::BodySides(QScrollArea* body, QSplitter* sides, QScrollArea* controls,
                     QBoxLayout* columns, int page_width)
    : QObject(body),
      body_(body),
      sides_(sides),
      controls_(controls),
      columns_(columns),
      page_width_(page_width) {
    sides->setStretchFactor(0, 0);
    sides->setStretchFactor(1, 1);
    connect(sides, &QSplitter::splitterMoved, this, [this] { moved_ = true; });
    body->installEventFilter(this);
    controls->widget()->installEventFilter(this);
    arrange();
}

bool BodySides::eventFilter(QObject* watched, QEvent* event) {
    const bool resized = watched == body_ && event->type() == QEvent::Resize;
    const bool changed = watched != body_ && event->type() == QEvent::LayoutRequest;
    if (resized || changed) arrange();
    return QObject::eventFilter(watched, event);
}

void BodySides::arrange() {
    if (body_->width() >= kWide - kFrames)
        set_beside();
    else
        set_below();
}

void BodySides::set_beside() {
    if (sides_->orientation() != Qt::Horizontal) {
        sides_->setOrientation(Qt::Horizontal);
        moved_ = false;
    }
    controls_->setMinimumSize(kLeastControls, 0);
    controls_->setMaximumHeight(QWIDGETSIZE_MAX);
    const bool both_fit = width_of_both() + page_width_ <= body_->width();
    set_columns(both_fit ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    if (moved_) return;
    const int controls = controls_->widget()->minimumSizeHint().width() + bar_width();
    sides_->setSizes({controls, qMax(1, body_->width() - controls)});
}

void BodySides::set_below() {
    set_columns(QBoxLayout::LeftToRight);
    sides_->setOrientation(Qt::Vertical);
    const QSize controls = controls_->widget()->minimumSizeHint();
    controls_->setMinimumSize(controls);
    controls_->setMaximumHeight(controls.height());
}

void BodySides::set_columns(QBoxLayout::Direction direction) {
    if (columns_->direction() == direction) return;
    columns_->setDirection(direction);
    // What is left over goes to the right, or to the bottom.
    columns_->setStretch(0, 0);
    columns_->setStretch(1, 1);
    columns_->activate();
}

int BodySides::bar_width() const {
    return controls_->verticalScrollBar()->sizeHint().width();
}

/// Of both columns side by side, with the bar that scrolls them.
int BodySides::width_of_both() const {
    const QMargins margins = columns_->contentsMargins();
    return columns_->itemAt(0)->minimumSize().width() + columns_->spacing() +
           columns_->itemAt(1)->minimumSize().width() + margins.left() + margins.right() +
           bar_width();
}

}  // namespace m47::realtime
