// SPDX-License-Identifier: GPL-3.0-or-later
#include "ask_twice.h"

#include <algorithm>
#include <cmath>

namespace m47 {
namespace {

constexpr std::size_t kFewest = 2;
constexpr std::size_t kRemembered = 8;
constexpr double kLowestRate = 1e-12;

/// Error rates are as far from each other as their exponents are.
double on_scale(const AskedValue& reading) {
    const bool rate = reading.asked == Asked::channel_ber || reading.asked == Asked::corrected_ber;
    return rate ? std::log10(std::max(reading.value, kLowestRate)) : reading.value;
}

/// What two readings of a steady signal may differ by: dB, decades, MHz or steps.
double play(Asked asked) {
    switch (asked) {
        case Asked::channel_ber:
        case Asked::corrected_ber:
        case Asked::offset:
            return 0.5;
        case Asked::attenuation:
            return 0;
        default:
            return 1;
    }
}

}  // namespace

bool agree(const AskedValue& one, const AskedValue& other) {
    return one.asked == other.asked && one.mark == other.mark &&
           std::fabs(on_scale(one) - on_scale(other)) <= play(one.asked);
}

bool agree(const AskedValues& ones, const AskedValues& others) {
    return std::ranges::equal(ones, others,
                              [](const AskedValue& a, const AskedValue& b) { return agree(a, b); });
}

bool Scatter::surprises(const QString& program, const AskedValue& reading) const {
    const auto found = lately_.find({program, reading.asked});
    if (found == lately_.end() || found->second.size() < kFewest) return true;
    const AskedValues& known = found->second;
    if (known.back().mark != reading.mark) return true;
    const auto [low, high] = std::ranges::minmax(known, {}, on_scale);
    const double span = on_scale(high) - on_scale(low);
    const double room = std::max(span, play(reading.asked));
    return on_scale(reading) < on_scale(low) - room / 2 ||
           on_scale(reading) > on_scale(high) + room / 2;
}

void Scatter::add(const QString& program, const AskedValue& reading) {
    AskedValues& known = lately_[{program, reading.asked}];
    known.push_back(reading);
    if (known.size() > kRemembered) known.erase(known.begin());
}

}  // namespace m47
