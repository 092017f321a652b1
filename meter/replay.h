// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <istream>
#include <map>
#include <string>

#include "recording.h"

namespace meter {

/// The meter of a recording: answers what was answered then, in the time that it took.
class Replay : public Responder {
  public:
    /// `speed` times as fast as recorded, 0: at once. What was never recorded is answered with
    /// COMMAND ERROR when `strict`, else so that a program goes on. Of `file` holds what Recording
    /// says.
    Replay(std::istream& file, double speed, bool strict);

    Delivery handle(const std::string& line) override;
    std::string report() const override { return {}; }

    /// Why there is nothing to answer from; empty where there is something.
    std::string fault() const;
    /// What is wrong with the recording though it can be used, in one sentence; empty: nothing.
    std::string remark() const;
    /// What was asked and never recorded, a line each.
    std::string never_recorded() const;

  private:
    Delivery unrecorded(const std::string& line);
    std::chrono::microseconds at_speed(std::chrono::microseconds recorded) const;

    Recording recording_;
    double speed_;
    bool strict_;
    std::map<std::string, std::uint64_t> unrecorded_;  ///< and how often each was asked
};

}  // namespace meter
