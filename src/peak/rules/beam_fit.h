// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <vector>

namespace m47::peak {

/// What was received with the shaft at a place.
struct Point {
    int steps = 0;  ///< of the shaft, east of the start
    double db = 0.0;
};

/// Where the beam's axis meets the satellite, by points around it: a Gaussian beam is a parabola in
/// dB. Steps east of the start, with fractions; nothing where the points, three at least, have no
/// summit.
std::optional<double> summit(const std::vector<Point>& points);

/// The satellites that points along the arc show: each about where a point is higher than those
/// beside it, and higher by at least `lowest_db` than the valley on either side. Nearest to the
/// start first.
std::vector<double> satellites_in(std::vector<Point> points, double lowest_db);

/// The level of the locked carrier alone: what else is in the filter, noise or another satellite on
/// the same frequency, is known by the MER. Both dB.
double carrier_level(double level_db, double mer_db);

}  // namespace m47::peak
