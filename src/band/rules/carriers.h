// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "band_curve.h"
#include "extremes.h"

namespace m47::band {

/// A carrier of the band as its levels show it. Frequencies in MHz, levels in the unit of the
/// curve.
struct Carrier {
    double centre = 0;
    double width = 0;        ///< where half of its power is reached
    double level = 0;        ///< of its flat top
    double height = 0;       ///< above the higher of the valleys beside it, dB
    QString name{};          ///< of a scan table; empty without one
    double symbol_rate = 0;  ///< of a scan table, MS/s; 0 without one
};

/// The filter through which the meter measures, MHz, where nothing better is known.
inline constexpr double kUsualFilter = 8;
/// A carrier stands out of the valleys beside it by so many dB; jitter and tilt do not.
inline constexpr double kLeastHeight = 2.5;

/// The slopes of a peak: where it reaches so much of its power, MHz; nothing where the samples end
/// before, or where a neighbour covers it.
struct Slopes {
    std::optional<double> left;
    std::optional<double> right;

    std::optional<double> distance() const {
        return left && right ? std::optional(*right - *left) : std::nullopt;
    }
};

/// Where `peak` reaches `share` (0 to 1) of its power above the floor beside it.
Slopes slopes_at(const BandCurve& curve, const Peak& peak, double share);

/// The samples between which it does so on its left or right side, as the places of the lower and
/// the upper one; nothing where none does.
struct Bracket {
    std::size_t low = 0;
    std::size_t high = 0;
};
std::optional<Bracket> bracket_at(const BandCurve& curve, const Peak& peak, double share,
                                  bool to_the_right);

/// The level of the flat top of `peak`.
double top_level(const BandCurve& curve, const Peak& peak);

/// The filter of the meter, MHz, as the slopes of the wide carriers show it, for a wide carrier
/// comes and goes over the width of the filter; nothing where there is no such carrier.
std::optional<double> measured_filter(const BandCurve& curve);

/// The carriers in `curve`, measured through a filter of `filter` MHz, which is taken into account:
/// one that is narrower shows as wide as the filter and has its width in its slopes. One that an
/// end of the curve cuts is none, since its centre is not known.
std::vector<Carrier> find_carriers(const BandCurve& curve, double filter = kUsualFilter);

}  // namespace m47::band
