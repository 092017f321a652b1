// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::link {

/// Whether the device of the port in use has gone and come back. It is told once a second whether
/// the device is there.
class DeviceWatch {
  public:
    /// True when the answer of came_back() has changed.
    bool look(bool there) {
        const bool before = came_back_;
        if (!there) gone_ = true;
        came_back_ = gone_ && there;
        return came_back_ != before;
    }

    /// The meter has just been identified behind the device, or another one was picked.
    void reset() { gone_ = came_back_ = false; }

    bool came_back() const { return came_back_; }

  private:
    bool gone_ = false;
    bool came_back_ = false;
};

}  // namespace m47::link
