// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument.h"

namespace meter {

namespace {

/// One seed for all that is chance.
SkyOptions sky_of(const Options& options) {
    SkyOptions sky = options.sky;
    sky.chance.seed = options.seed;
    sky.chance.fade_db = options.sky.fade_db;
    return sky;
}

}  // namespace

Instrument::Instrument(const Options& options, const SecondsClock& clock)
    : jitter_(options.seed),
      line_noise_(~options.seed),
      sky_(PointedSky::of(sky_of(options), clock)),
      fixed_(sky_ ? nullptr : make_fixed_reception(options.sky.kind, options.sky.fade_db)),
      receiver_(jitter_, sky_ ? sky_->reception() : *fixed_),
      state_(options.version_text),
      interpreter_(state_, receiver_),
      faults_(options.faults, options.fault_after, options.fault_on),
      late_seconds_(options.late_seconds) {
    for (int slot = 0; options.no_satellites && slot < kSatelliteSlots; ++slot)
        state_.satellites.clear(slot);
    if (sky_) state_.motor.take_time();
    prefill_logger(state_, options.logger_bytes, receiver_);
}

Delivery Instrument::handle(const std::string& line) {
    Delivery delivery;
    if (sky_) sky_->catch_up(state_.motor);
    if (line.empty()) {
        asleep_ = false;
        return delivery;
    }
    if (asleep_) return delivery;
    const FaultKind* fault = faults_.next(line);
    if (fault == nullptr || fault->carried_out) delivery.bytes = interpreter_.answer(line);
    if (fault != nullptr) fault->spoil(delivery, {line, line_noise_, late_seconds_});
    asleep_ = delivery.falls_asleep;
    return delivery;
}

}  // namespace meter
