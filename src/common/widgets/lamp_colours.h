// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lamp.h"
#include "lamp_colour.h"

namespace m47 {

/// The exact colour that stands for `colour`.
inline QColor shown_colour(LampColour colour) {
    switch (colour) {
        case LampColour::red:
            return QColor::fromRgb(kRed);
        case LampColour::green:
            return QColor::fromRgb(kGreen);
        case LampColour::grey:
            break;
    }
    return QColor::fromRgb(kGrey);
}

}  // namespace m47
