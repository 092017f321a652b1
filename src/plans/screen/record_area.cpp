// SPDX-License-Identifier: GPL-3.0-or-later
#include "record_area.h"

namespace m47::plans {

RecordArea::RecordArea(QWidget* boxes) {
    setObjectName(QStringLiteral("record_area"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setWidget(boxes);
}

QSize RecordArea::sizeHint() const {
    return widget()->sizeHint();
}

}  // namespace m47::plans
