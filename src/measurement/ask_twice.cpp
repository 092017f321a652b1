// SPDX-License-Identifier: GPL-3.0-or-later
#include "ask_twice.h"

#include <algorithm>
#include <cmath>

namespace m47::measurement {
namespace {

constexpr std::size_t kFewest = 2;
constexpr std::size_t kRemembered = 8;
constexpr double kLowestRate = 1e-12;
/// How many times as far from the middle as half of the readings a new one may lie.
constexpr double kScatterRoom = 4;

/// Error rates are as far from each other as their exponents are.
double on_scale(const AskedValue& reading) {
    const bool rate =
        reading.asked == AskedFor::channel_ber || reading.asked == AskedFor::corrected_ber;
    return rate ? std::log10(std::max(reading.value, kLowestRate)) : reading.value;
}

/// What two readings of a steady signal may differ by: dB, decades, MHz or steps.
double play(AskedFor asked) {
    switch (asked) {
        case AskedFor::channel_ber:
        case AskedFor::corrected_ber:
        case AskedFor::offset:
            return 0.5;
        case AskedFor::attenuation:
            return 0;
        default:
            return 1;
    }
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
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
    // By the middle of them: one that was spoilt and taken moves it little.
    std::vector<double> values;
    for (const AskedValue& value : known) values.push_back(on_scale(value));
    const double middle = median(values);
    for (double& value : values) value = std::fabs(value - middle);
    const double room = std::max(kScatterRoom * median(values), play(reading.asked));
    return std::fabs(on_scale(reading) - middle) > room;
}

void Scatter::add(const QString& program, const AskedValue& reading) {
    AskedValues& known = lately_[{program, reading.asked}];
    known.push_back(reading);
    if (known.size() > kRemembered) known.erase(known.begin());
}

}  // namespace m47::measurement
