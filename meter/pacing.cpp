// SPDX-License-Identifier: GPL-3.0-or-later
#include "pacing.h"

#include <algorithm>
#include <cmath>

namespace meter {

namespace {

constexpr double kBitsPerCharacter = 11.0;  // start bit, 8 data bits, 2 stop bits
constexpr double kBaud = 38400.0;
constexpr double kNanosecondsPerSecond = 1.0e9;

}  // namespace

Pacing::Pacing(double factor)
    : nanoseconds_per_character_(
          factor > 0.0 ? kNanosecondsPerSecond * kBitsPerCharacter / kBaud / factor : 0.0) {}

std::chrono::nanoseconds Pacing::due(std::size_t index) const {
    const double time = nanoseconds_per_character_ * static_cast<double>(index + 1);
    return std::chrono::nanoseconds(std::llround(time));
}

std::size_t Pacing::due_count(std::chrono::nanoseconds elapsed, std::size_t total) const {
    if (!paced()) return total;
    const double estimate = static_cast<double>(elapsed.count()) / nanoseconds_per_character_;
    if (estimate >= static_cast<double>(total)) return total;
    auto count = static_cast<std::size_t>(std::max(0.0, estimate));
    while (count < total && due(count) <= elapsed) ++count;
    while (count > 0 && due(count - 1) > elapsed) --count;
    return count;
}

}  // namespace meter
