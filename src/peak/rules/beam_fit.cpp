// SPDX-License-Identifier: GPL-3.0-or-later
#include "beam_fit.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace m47::peak {
namespace {

// Behind a summit of three points that are far apart the parabola is no good guide.
constexpr double kFarthest = 0.6;

/// Sums of powers of x and of their products with y, x counted from `centre`.
struct Sums {
    double n = 0, x = 0, xx = 0, xxx = 0, xxxx = 0, y = 0, xy = 0, xxy = 0;
};

Sums sums_of(const std::vector<Point>& points, double centre) {
    Sums s;
    for (const Point& point : points) {
        const double x = point.steps - centre;
        s.n += 1;
        s.x += x;
        s.xx += x * x;
        s.xxx += x * x * x;
        s.xxxx += x * x * x * x;
        s.y += point.db;
        s.xy += x * point.db;
        s.xxy += x * x * point.db;
    }
    return s;
}

bool is_summit(const std::vector<Point>& points, std::size_t i) {
    return points[i].db >= points[i - 1].db && points[i].db > points[i + 1].db;
}

/// How far one has to go down from a summit before a side rises above it, or ends.
template <typename Iterator>
double fall(double summit_db, Iterator side, Iterator end) {
    double lowest = summit_db;
    for (; side != end && side->db <= summit_db; ++side) lowest = std::min(lowest, side->db);
    return summit_db - lowest;
}

double prominence(const std::vector<Point>& points, std::size_t i) {
    const auto here = points.begin() + static_cast<std::ptrdiff_t>(i);
    const double east = fall(here->db, here + 1, points.end());
    const double west = fall(here->db, std::make_reverse_iterator(here), points.rend());
    return std::min(east, west);
}

double summit_near(const std::vector<Point>& points, std::size_t i) {
    const double reach = kFarthest * (points[i + 1].steps - points[i].steps);
    const double here = points[i].steps;
    const auto found = summit({points[i - 1], points[i], points[i + 1]});
    return std::clamp(found.value_or(here), here - reach, here + reach);
}

}  // namespace

std::optional<double> summit(const std::vector<Point>& points) {
    if (points.size() < 3) return std::nullopt;
    double centre = 0;
    for (const Point& point : points) centre += point.steps;
    centre /= static_cast<double>(points.size());
    const Sums s = sums_of(points, centre);
    // The least squares for y = a + b x + c x x, where the sum of x is 0.
    const double spread = s.xxxx - s.xx * s.xx / s.n;
    const double determinant = s.xx * spread - s.xxx * s.xxx;
    if (determinant <= 0) return std::nullopt;
    const double bent = s.xxy - s.xx * s.y / s.n;
    const double b = (s.xy * spread - s.xxx * bent) / determinant;
    const double c = (s.xx * bent - s.xxx * s.xy) / determinant;
    if (c >= 0) return std::nullopt;
    return centre - b / (2 * c);
}

std::vector<double> satellites_in(std::vector<Point> points, double lowest_db) {
    std::vector<double> found;
    if (points.size() < 3) return found;
    std::ranges::sort(points, {}, &Point::steps);
    for (std::size_t i = 1; i + 1 < points.size(); ++i)
        if (is_summit(points, i) && prominence(points, i) >= lowest_db)
            found.push_back(summit_near(points, i));
    std::ranges::sort(found, {}, [](double steps) { return std::abs(steps); });
    return found;
}

double carrier_level(double level_db, double mer_db) {
    const double ratio = std::pow(10.0, mer_db / 10.0);
    return level_db - 10.0 * std::log10(1.0 + 1.0 / ratio);
}

}  // namespace m47::peak
