// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <optional>
#include <string>

namespace meter {

/// The dish positioner. Positions are steps, east counted positive, 0 the reference.
class Motor {
  public:
    /// Turns one step when the motor is under way; call it once for each command received.
    void tick();

    void stop();
    void start_east();
    void start_west();
    void disable_limits();
    void delete_east_limit();
    void delete_west_limit();
    void store(int position);
    /// Drives to a stored position; stays where it is when nothing is stored there.
    void recall(int position);
    /// Drives by `amount` steps, or for `amount` seconds when `in_steps` is false.
    void drive(bool east, int amount, bool in_steps);
    /// Counts the stored positions from where the dish stands now.
    void recalculate();
    void reset();

    int position() const { return position_; }
    std::string describe() const;

  private:
    void move_to(int position);

    int position_ = 0;
    int direction_ = 0;
    std::optional<int> east_limit_ = 700;
    std::optional<int> west_limit_ = -700;
    std::map<int, int> stored_;
};

}  // namespace meter
