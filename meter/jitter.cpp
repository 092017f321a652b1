// SPDX-License-Identifier: GPL-3.0-or-later
#include "jitter.h"

namespace meter {

Jitter::Jitter(std::uint64_t seed) : state_(seed) {}

std::uint64_t Jitter::bits() {
    state_ += 0x9E3779B97F4A7C15ULL;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
    return mixed ^ (mixed >> 31);
}

std::size_t Jitter::below(std::size_t limit) {
    return static_cast<std::size_t>(bits() % limit);
}

double Jitter::around_zero(double amplitude) {
    const double unit = static_cast<double>(bits() >> 11) / 9007199254740992.0;
    return (2.0 * unit - 1.0) * amplitude;
}

char Jitter::line_noise() {
    return static_cast<char>(static_cast<unsigned char>(0x80 | (bits() & 0x7F)));
}

}  // namespace meter
