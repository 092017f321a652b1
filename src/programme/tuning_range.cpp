// SPDX-License-Identifier: GPL-3.0-or-later
#include "tuning_range.h"

namespace m47::programme {
namespace {

constexpr double kBandStart = 920;
constexpr double kBandEnd = 2150;
constexpr double kOscillatorBelowBand = 7000;

}  // namespace

TuningRange tuning_range(bool direct, double oscillator) {
    if (direct) return {kBandStart, kBandEnd};
    if (oscillator >= kOscillatorBelowBand) return {oscillator + kBandStart, oscillator + kBandEnd};
    return {oscillator - kBandEnd, oscillator - kBandStart};
}

double inside_range(double frequency, const TuningRange& range) {
    if (frequency < range.minimum) frequency = range.minimum;
    if (frequency > range.maximum) frequency = range.maximum;
    if (frequency == 0) frequency = range.maximum;
    return frequency;
}

}  // namespace m47::programme
