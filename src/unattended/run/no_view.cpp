// SPDX-License-Identifier: GPL-3.0-or-later
#include "no_view.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace m47::unattended {

void NoView::pump() {
    // What the serial library posts to itself must not pile up for days.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                    QEventLoop::X11ExcludeTimers);
}

}  // namespace m47::unattended
