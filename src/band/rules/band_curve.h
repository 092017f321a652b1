// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "reading.h"

namespace m47::band {

/// One level of the band; one that the meter did not give is no number.
struct Sample {
    double mhz = 0;
    measurement::Reading level{};
};

/// The levels of a band by frequency, one at each, in dB of whatever unit the meter has.
class BandCurve {
  public:
    /// Takes `sample` in; one of the same frequency is replaced. A level that is no number is left
    /// out.
    void take(const Sample& sample);
    void clear() { samples_.clear(); }

    std::size_t size() const { return samples_.size(); }
    bool empty() const { return samples_.empty(); }
    /// In the order of their frequencies.
    const std::vector<Sample>& samples() const { return samples_; }
    double mhz(std::size_t place) const { return samples_[place].mhz; }
    double level(std::size_t place) const {
        return static_cast<double>(samples_[place].level.value);
    }

    /// The level that was measured at `mhz` itself.
    std::optional<measurement::Reading> exactly_at(double mhz) const;
    /// The level at `mhz`, between two samples on the line between them; nothing outside of them.
    std::optional<double> level_at(double mhz) const;

  private:
    std::vector<Sample> samples_;
};

/// A power ratio as dB and back.
double power_of(double level);
double level_of(double power);

}  // namespace m47::band
