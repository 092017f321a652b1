// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_colours.h"

namespace m47::band {
namespace {

constexpr int kDarkBelow = 128;
constexpr int kGridAlpha = 40;

// Told apart by colour-blind eyes as well, in the order of Trace.
constexpr std::array<QRgb, kTraces> kOnLight{0xff777777, 0xff007f5c, 0xffb86e00, 0xff0072b2,
                                             0xffa0448a};
constexpr std::array<QRgb, kTraces> kOnDark{0xffaaaaaa, 0xff2ec49a, 0xffe69f00, 0xff56b4e9,
                                            0xffe08cc4};

BandColours colours(const QColor& background, const QColor& text) {
    BandColours made;
    const bool dark = background.lightness() < kDarkBelow;
    const auto& traces = dark ? kOnDark : kOnLight;
    for (std::size_t k = 0; k < kTraces; ++k) made.traces[k] = QColor::fromRgb(traces[k]);
    made.background = background;
    made.text = text;
    made.grid = text;
    made.grid.setAlpha(kGridAlpha);
    made.markers = {text, made.traces[static_cast<std::size_t>(Trace::difference)]};
    return made;
}

}  // namespace

BandColours band_colours(const QPalette& palette) {
    return colours(palette.color(QPalette::Base), palette.color(QPalette::Text));
}

BandColours paper_colours() {
    return colours(Qt::white, Qt::black);
}

}  // namespace m47::band
