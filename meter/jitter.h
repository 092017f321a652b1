// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace meter {

/// Repeatable random source: the same seed gives the same sequence on every machine.
class Jitter {
  public:
    explicit Jitter(std::uint64_t seed);

    /// Next 64 random bits.
    std::uint64_t bits();

    /// A number from 0 (included) to `limit` (excluded); `limit` must be above 0.
    std::size_t below(std::size_t limit);

    /// A number from -`amplitude` to +`amplitude`.
    double around_zero(double amplitude);

    /// A byte from 0x80 to 0xFF, as disturbances on a line produce them.
    char line_noise();

  private:
    std::uint64_t state_;
};

}  // namespace meter
