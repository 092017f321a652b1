// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <memory>

#include "dish.h"
#include "motor.h"
#include "orbit_reception.h"
#include "sky_options.h"

namespace meter {

/// Seconds that have passed since any moment.
using SecondsClock = std::function<double()>;

/// The clock of the system.
double steady_seconds();

/// The orbit above a dish on a motor, as time goes by.
class PointedSky {
  public:
    /// The sky that the options ask for, with tables read anew; null where it is the fixed one.
    /// Throws std::runtime_error where there are no tables.
    static std::unique_ptr<PointedSky> of(const SkyOptions& options, const SecondsClock& clock);

    PointedSky(std::shared_ptr<const ScanTables> tables, const SkyOptions& options,
               SecondsClock clock);

    /// Turns the motor by the time that has passed since the last call, and the dish with it.
    void catch_up(Motor& motor);

    const Reception& reception() const { return reception_; }
    const Orbit& orbit() const { return orbit_; }
    double pointing() const { return dish_.east(); }

  private:
    std::shared_ptr<const ScanTables> tables_;
    Orbit orbit_;
    OrbitReception reception_;
    Dish dish_;
    SecondsClock clock_;
    double last_;
    double weather_seconds_ = 0.0;
};

}  // namespace meter
