// SPDX-License-Identifier: GPL-3.0-or-later
#include "trend_colours.h"

#include <array>
#include <cmath>

namespace m47::trend {
namespace {

// Told apart by colour-blind eyes as well; red is left to what failed.
constexpr std::array<QRgb, 8> kOnLight{0xff0072b2, 0xffb86e00, 0xff007f5c, 0xffa0448a,
                                       0xff2a93cf, 0xff7a6a00, 0xff4b3fa7, 0xff555555};
constexpr std::array<QRgb, 8> kOnDark{0xff56b4e9, 0xffe69f00, 0xff2ec49a, 0xffe08cc4,
                                      0xff9ad0ff, 0xfff0e442, 0xffa59bff, 0xffbbbbbb};
constexpr double kGoldenTurn = 137.508;  // degrees: every further hue lies far from those before
constexpr int kDarkBelow = 128;

TrendColours colours(const QColor& background, const QColor& text) {
    TrendColours made;
    made.dark = background.lightness() < kDarkBelow;
    made.background = background;
    made.text = text;
    made.axis = text;
    made.axis.setAlpha(160);
    made.grid = text;
    made.grid.setAlpha(40);
    made.band = made.dark ? QColor(255, 80, 80, 60) : QColor(220, 0, 0, 32);
    made.failed = made.dark ? QColor(255, 90, 90) : QColor(208, 0, 0);
    return made;
}

}  // namespace

QColor TrendColours::curve(std::size_t number) const {
    const auto& first = dark ? kOnDark : kOnLight;
    if (number < first.size()) return QColor::fromRgb(first[number]);
    const double hue = std::fmod(static_cast<double>(number) * kGoldenTurn, 360.0) / 360.0;
    return QColor::fromHslF(static_cast<float>(hue), 0.7F, dark ? 0.7F : 0.38F);
}

TrendColours trend_colours(const QPalette& palette) {
    return colours(palette.color(QPalette::Base), palette.color(QPalette::Text));
}

TrendColours paper_colours() {
    return colours(Qt::white, Qt::black);
}

}  // namespace m47::trend
