// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_curve.h"

#include <algorithm>
#include <cmath>

namespace m47::band {

double power_of(double level) {
    return std::pow(10.0, level / 10);
}

double level_of(double power) {
    return 10 * std::log10(power);
}

void BandCurve::take(const Sample& sample) {
    if (!sample.level.measured()) return;
    const auto place = std::ranges::lower_bound(samples_, sample.mhz, std::less<>(), &Sample::mhz);
    if (place != samples_.end() && place->mhz == sample.mhz)
        place->level = sample.level;
    else
        samples_.insert(place, sample);
}

std::optional<measurement::Reading> BandCurve::exactly_at(double mhz) const {
    const auto place = std::ranges::lower_bound(samples_, mhz, std::less<>(), &Sample::mhz);
    if (place == samples_.end() || place->mhz != mhz) return std::nullopt;
    return place->level;
}

std::optional<double> BandCurve::level_at(double mhz) const {
    const auto above = std::ranges::lower_bound(samples_, mhz, std::less<>(), &Sample::mhz);
    if (above == samples_.end()) return std::nullopt;
    const auto high = static_cast<std::size_t>(above - samples_.begin());
    if (above->mhz == mhz) return level(high);
    if (high == 0) return std::nullopt;
    const double share = (mhz - this->mhz(high - 1)) / (above->mhz - this->mhz(high - 1));
    return level(high - 1) + share * (level(high) - level(high - 1));
}

}  // namespace m47::band
