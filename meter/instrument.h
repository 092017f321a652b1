// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "delivery.h"
#include "faults.h"
#include "interpreter.h"
#include "jitter.h"
#include "options.h"
#include "pointed_sky.h"
#include "receiver.h"
#include "state.h"

namespace meter {

/// The whole meter behind its line: commands in, deliveries out.
class Instrument : public Responder {
  public:
    /// `clock` is asked by the sky of satellites alone. Throws std::runtime_error where that sky is
    /// wanted and has no tables.
    explicit Instrument(const Options& options, const SecondsClock& clock = steady_seconds);

    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;

    /// Handles one line (without CR) and says what to send. An empty line wakes a sleeping meter
    /// and is otherwise ignored; a sleeping meter ignores everything else.
    Delivery handle(const std::string& line) override;
    std::string report() const override { return state_.report(); }

    const State& state() const { return state_; }
    bool asleep() const { return asleep_; }

    /// The satellites above the dish; null under the fixed sky.
    const PointedSky* sky() const { return sky_.get(); }

  private:
    Jitter jitter_;
    Jitter line_noise_;
    std::unique_ptr<PointedSky> sky_;         ///< null under the fixed sky
    std::unique_ptr<const Reception> fixed_;  ///< null under the other
    Receiver receiver_;
    State state_;
    Interpreter interpreter_;
    FaultPlan faults_;
    double late_seconds_;
    bool asleep_ = false;
};

}  // namespace meter
