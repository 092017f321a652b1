// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_traces.h"

#include <utility>

namespace m47::band {

void BandTraces::take(const Sample& sample) {
    if (std::exchange(begins_, false)) {
        live_.clear();
        held_before_ = max_hold_;
    }
    if (!sample.level.measured()) return;
    live_.take(sample);
    const std::optional<double> held = held_before_.level_at(sample.mhz);
    if (!held || *held < static_cast<double>(sample.level.value)) max_hold_.take(sample);
    if (sample.level.mark != measurement::RangeMark::none) return;
    Sum& sum = sums_[sample.mhz];
    sum.power += power_of(static_cast<double>(sample.level.value));
    ++sum.count;
    average_.take({sample.mhz, {static_cast<float>(level_of(sum.power / sum.count))}});
}

BandCurve difference(const BandCurve& curve, const BandCurve& reference) {
    BandCurve apart;
    for (std::size_t k = 0; k < curve.size(); ++k)
        if (const auto other = reference.level_at(curve.mhz(k)))
            apart.take({curve.mhz(k), {static_cast<float>(curve.level(k) - *other)}});
    return apart;
}

}  // namespace m47::band
