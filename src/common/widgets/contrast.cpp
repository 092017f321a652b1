// SPDX-License-Identifier: GPL-3.0-or-later
#include "contrast.h"

#include <algorithm>
#include <cmath>

namespace m47 {
namespace {

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& colour) {
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

}  // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor mixed(const QColor& front, const QColor& back, double share) {
    const auto channel = [share](int of_front, int of_back) {
        return static_cast<int>(std::lround(share * of_front + (1 - share) * of_back));
    };
    return {channel(front.red(), back.red()), channel(front.green(), back.green()),
            channel(front.blue(), back.blue())};
}

QColor just_seen(const QColor& text, const QColor& ground, double least) {
    constexpr int kSteps = 20;
    for (int step = 1; step < kSteps; ++step) {
        const QColor colour = mixed(text, ground, static_cast<double>(step) / kSteps);
        if (contrast(colour, ground) >= least) return colour;
    }
    return text;
}

}  // namespace m47
