// SPDX-License-Identifier: GPL-3.0-or-later
#include "mer_margin.h"

#include <cmath>

namespace m47::measurement {
namespace {

constexpr Bilingual kLeft{"%1 dB left", "margine di %1 dB"};
constexpr Bilingual kTooLittle{"%1 dB too little", "mancano %1 dB"};
constexpr Bilingual kAtLeastLeft{"at least %1 dB left", "margine di almeno %1 dB"};
constexpr Bilingual kAtMostLeft{"at most %1 dB left", "margine di %1 dB al più"};
constexpr Bilingual kAtLeastTooLittle{"at least %1 dB too little", "mancano almeno %1 dB"};
constexpr Bilingual kAtMostTooLittle{"at most %1 dB too little", "mancano al più %1 dB"};

/// Tenths are shown: what is less is none.
constexpr double kShownMargin = 0.05;

const Bilingual& words_of(const Margin& margin) {
    const bool left = margin.decibels > -kShownMargin;
    if (margin.mark == RangeMark::above) return left ? kAtLeastLeft : kAtMostTooLittle;
    if (margin.mark == RangeMark::below) return left ? kAtMostLeft : kAtLeastTooLittle;
    return left ? kLeft : kTooLittle;
}

}  // namespace

std::optional<Margin> mer_margin(const Measurement& measured, double needed) {
    const Reading& mer = measured.reading(Quantity::mer);
    if (!mer.measured()) return {};
    return Margin{static_cast<double>(mer.value) - needed, mer.mark};
}

std::optional<Margin> alarm_margin(const Measurement& measured) {
    const std::optional<Limits>& limits = measured.limits[static_cast<std::size_t>(Quantity::mer)];
    if (!limits || !limits->minimum) return {};
    return mer_margin(measured, *limits->minimum);
}

QString margin_text(const std::optional<Margin>& margin) {
    if (!margin) return reading_text(Quantity::mer, {});
    const bool none = std::fabs(margin->decibels) < kShownMargin;
    return reading_text(Quantity::mer,
                        {none ? 0 : static_cast<float>(margin->decibels), margin->mark});
}

QString margin_words(const std::optional<Margin>& margin, const Texts& texts) {
    if (!margin) return {};
    return texts.pick(words_of(*margin)).arg(std::fabs(margin->decibels), 0, 'f', 1);
}

}  // namespace m47::measurement
