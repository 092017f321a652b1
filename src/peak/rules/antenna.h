// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>

namespace m47::peak {

/// A step of the motor is a tenth of a degree.
inline constexpr int kStepsOfDegree = 10;

/// A dish on a motor with a meter behind it; east is counted up.
class Antenna {
  public:
    virtual ~Antenna() = default;

    /// Turns the shaft by so many steps, not 0, and comes back once it has turned. False when it is
    /// not sure that the motor was told; it may have turned or not.
    virtual bool drive(int steps) = 0;

    /// Stops the motor; told also when it stands. Never throws.
    virtual void stop() noexcept = 0;

    /// The level where the meter is tuned, dB of whatever unit it has; nothing when there was none.
    virtual std::optional<double> level() = 0;

    /// The MER of the carrier there, dB; nothing without lock.
    virtual std::optional<double> mer() = 0;

    /// The levels are in another unit than at first, as somebody chose it at the meter: they cannot
    /// be compared.
    virtual bool unit_changed() = 0;
    /// That was noticed already: there are no more levels.
    virtual bool strayed() const { return false; }
};

}  // namespace m47::peak
