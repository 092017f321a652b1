// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

#include "band_curve.h"

namespace m47::band {

/// A highest point of the band and the lowest ones on its sides, as places in a curve.
struct Peak {
    std::size_t left = 0;  ///< the valley below it in frequency
    std::size_t top = 0;
    std::size_t right = 0;
};

/// The peaks of `curve`, each at least `height` dB above the valleys on both its sides; at an end
/// of the curve one side is enough, as nobody knows what lies behind.
std::vector<Peak> find_peaks(const BandCurve& curve, double height);

/// How far a peak lies above the higher of its two valleys, dB.
double height_of(const BandCurve& curve, const Peak& peak);

}  // namespace m47::band
