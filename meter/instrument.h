// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "delivery.h"
#include "faults.h"
#include "interpreter.h"
#include "jitter.h"
#include "options.h"
#include "receiver.h"
#include "state.h"

namespace meter {

/// The whole meter behind its line: commands in, deliveries out.
class Instrument : public Responder {
  public:
    explicit Instrument(const Options& options);

    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;

    /// Handles one line (without CR) and says what to send. An empty line wakes a sleeping meter
    /// and is otherwise ignored; a sleeping meter ignores everything else.
    Delivery handle(const std::string& line) override;
    std::string report() const override { return state_.report(); }

    const State& state() const { return state_; }
    bool asleep() const { return asleep_; }

  private:
    Jitter jitter_;
    Jitter line_noise_;
    Receiver receiver_;
    State state_;
    Interpreter interpreter_;
    FaultPlan faults_;
    double late_seconds_;
    bool asleep_ = false;
};

}  // namespace meter
