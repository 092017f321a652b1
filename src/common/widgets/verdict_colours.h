// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

namespace m47 {

/// The colour of a measurement that passed or failed, as text on `ground`.
inline QColor verdict_colour(bool passed, const QColor& ground = Qt::white) {
    const bool dark = ground.lightness() < 128;
    if (passed) return dark ? QColor(0x40, 0xFF, 0x60) : QColor(0x00, 0x66, 0x33);
    return dark ? QColor(0xFF, 0x80, 0x80) : QColor(0xC0, 0x00, 0x00);
}

}  // namespace m47
