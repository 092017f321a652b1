// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47 {

/// The unit in which the sizes of the real-time screen are stated: 15 to a pixel at 100 %.
inline constexpr int kTwipsPerPixel = 15;

/// `twips` in logical pixels, to the nearest one.
constexpr int pixels_of(int twips) {
    return (twips + kTwipsPerPixel / 2) / kTwipsPerPixel;
}

}  // namespace m47
