// SPDX-License-Identifier: GPL-3.0-or-later
#include "pointed_sky.h"

#include <chrono>

namespace meter {

namespace {

constexpr std::uint64_t kSlackStream = 0x51AC'C0DE'0000'0001ULL;

int slack_at_start(const SkyOptions& options) {
    Jitter chance(options.chance.seed ^ kSlackStream);
    return static_cast<int>(chance.below(static_cast<std::size_t>(options.backlash) + 1));
}

}  // namespace

double steady_seconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

std::unique_ptr<PointedSky> PointedSky::of(const SkyOptions& options, const SecondsClock& clock) {
    if (!options.orbit) return nullptr;
    auto tables = std::make_shared<const ScanTables>(ScanTables::read(options.tables));
    return std::make_unique<PointedSky>(std::move(tables), options, clock);
}

PointedSky::PointedSky(std::shared_ptr<const ScanTables> tables, const SkyOptions& options,
                       SecondsClock clock)
    : tables_(std::move(tables)),
      orbit_(*tables_, options.chance),
      reception_(orbit_, options.lnb),
      dish_(options.point_east, options.backlash, slack_at_start(options)),
      clock_(std::move(clock)),
      last_(clock_()) {
    reception_.point(dish_.east());
    // The weather begins with the meter, so that each run of one seed has the same.
    reception_.set_time(0.0);
}

void PointedSky::catch_up(Motor& motor) {
    const double now = clock_();
    motor.turn_for(now - last_);
    weather_seconds_ += now - last_;
    last_ = now;
    dish_.follow(motor.shaft());
    if (dish_.east() != reception_.pointing()) reception_.point(dish_.east());
    reception_.set_time(weather_seconds_);
}

}  // namespace meter
