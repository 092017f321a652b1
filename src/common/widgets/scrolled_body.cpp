// SPDX-License-Identifier: GPL-3.0-or-later
#include "scrolled_body.h"

namespace m47 {

ScrolledBody::ScrolledBody(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    // Its controls have the keyboard, and bring themselves into sight.
    setFocusPolicy(Qt::NoFocus);
}

QSize ScrolledBody::sizeHint() const {
    return widget() ? widget()->sizeHint() : QScrollArea::sizeHint();
}

}  // namespace m47
