// SPDX-License-Identifier: GPL-3.0-or-later
#include "level_tone.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace m47::level {
namespace {

constexpr double kReferenceHz = 440;
constexpr double kReferenceLevel = 60;  // dBuV
constexpr double kOctave = 10;          // dB
constexpr double kLoudness = 12000;     // of 32767
constexpr double kFadeSeconds = 0.01;

}  // namespace

double LevelTone::pitch(double level) {
    const double hertz = kReferenceHz * std::exp2((level - kReferenceLevel) / kOctave);
    return std::clamp(hertz, kLowestHz, kHighestHz);
}

QByteArray LevelTone::samples(double hertz, double seconds) {
    const auto count = static_cast<qsizetype>(std::lround(seconds * kSampleRate));
    QByteArray bytes(count * qsizetype{sizeof(std::int16_t)}, '\0');
    auto* sample = reinterpret_cast<std::int16_t*>(bytes.data());
    const double fade = kFadeSeconds * kSampleRate;
    for (qsizetype k = 0; k < count; ++k) {
        const double from_end = static_cast<double>(std::min(k, count - 1 - k));
        const double swell = std::min(1.0, from_end / fade);
        const double turn = 2 * std::numbers::pi * hertz * static_cast<double>(k) / kSampleRate;
        sample[k] = static_cast<std::int16_t>(std::lround(kLoudness * swell * std::sin(turn)));
    }
    return bytes;
}

}  // namespace m47::level
