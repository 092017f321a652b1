// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>
#include <array>

#include "band_chart.h"

namespace m47::band {

/// The colours of the chart, light or dark as the window around it.
struct BandColours {
    QColor background, text, grid;
    std::array<QColor, kTraces> traces;
    std::array<QColor, kMarkers> markers;
};

/// The colours that go with the text boxes of `palette`.
BandColours band_colours(const QPalette& palette);

/// The colours on paper.
BandColours paper_colours();

}  // namespace m47::band
