// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>

#include "link_view.h"

namespace bench {

/// The windows that wait meanwhile.
class EventLoopView : public m47::link::LinkView {
  public:
    void show_progress_bar() override {}
    void set_progress(int) override {}
    void set_hourglass(bool) override {}
    void set_port_state(const QString&, bool) override {}
    void pump() override { QCoreApplication::processEvents(); }
};

}  // namespace bench
