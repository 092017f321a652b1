// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::acquisition {

/// A one-second tick that can be switched on and off. Switched on it ticks for the first time one
/// second later, also when it was running already.
class Ticker {
  public:
    virtual ~Ticker() = default;
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual bool running() const = 0;
};

}  // namespace m47::acquisition
