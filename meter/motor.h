// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <optional>
#include <string>

namespace meter {

/// The dish positioner. Positions are steps, east counted positive, 0 the reference. A motor that
/// takes no time is where it is sent at once, and turns one step with each command while it is
/// started; one that takes its time turns as the clock says.
class Motor {
  public:
    /// From now on it takes its time, 15 steps a second.
    void take_time() { takes_time_ = true; }

    /// Turns one step when the motor is under way; call it once for each command received.
    void tick();

    /// Turns as far as it comes in so many seconds.
    void turn_for(double seconds);

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

    /// Where the shaft really stands: steps east of where it was at the start, however the
    /// positions are counted now.
    int shaft() const { return position_ + recounted_; }

    bool turning() const { return direction_ != 0; }
    std::string describe() const;

  private:
    void move_to(int position);
    int within_limits(int position) const;
    void step();

    bool takes_time_ = false;
    double steps_due_ = 0.0;
    std::optional<int> target_;
    int recounted_ = 0;
    int position_ = 0;
    int direction_ = 0;
    std::optional<int> east_limit_ = 700;
    std::optional<int> west_limit_ = -700;
    std::map<int, int> stored_;
};

}  // namespace meter
