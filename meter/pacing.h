// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>

namespace meter {

/// When each character of an answer has left the meter, counted from the answer's start:
/// 38400 baud, 11 bits a character. Each time is computed from the start, so nothing adds up.
class Pacing {
  public:
    /// `factor` times the true speed; 0 sends everything at once.
    explicit Pacing(double factor);

    bool paced() const { return nanoseconds_per_character_ > 0.0; }

    /// Time at which character `index` (from 0) has completely left.
    std::chrono::nanoseconds due(std::size_t index) const;

    /// How many of `total` characters have left after `elapsed`.
    std::size_t due_count(std::chrono::nanoseconds elapsed, std::size_t total) const;

  private:
    double nanoseconds_per_character_;
};

}  // namespace meter
