// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPalette>
#include <cstddef>

namespace m47::trend {

/// The colours of the trend, light or dark as the window around it.
struct TrendColours {
    QColor background, text, axis, grid, band, failed;
    bool dark = false;

    /// The colour of curve number `number`; the first eight are easily told apart.
    QColor curve(std::size_t number) const;
};

/// The colours that go with the text boxes of `palette`.
TrendColours trend_colours(const QPalette& palette);

/// The colours on paper.
TrendColours paper_colours();

}  // namespace m47::trend
