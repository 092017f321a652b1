// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "link.h"

namespace m47::link {

/// While it lives `show` is told of each moment in which the meter is waited for: what is painted
/// then takes nothing of the work's time.
class Waits {
  public:
    Waits(Link& link, const std::function<void()>& show) : link_(link) { link_.on_waited = show; }
    ~Waits() { link_.on_waited = nullptr; }
    Waits(const Waits&) = delete;
    Waits& operator=(const Waits&) = delete;

  private:
    Link& link_;
};

}  // namespace m47::link
