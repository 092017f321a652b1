// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "settings.h"
#include "sky.h"

namespace meter {

/// Result of the QPSK demodulator; without lock the BERs are at their ceiling, MER at its floor.
struct QpskQuality {
    bool locked = false;
    double channel_ber = 3.0e-2;
    double corrected_ber = 3.0e-2;
    double offset_mhz = 0.0;
    double mer_db = 1.0;
};

/// What arrives at the meter's input, before its jitter.
class Reception {
  public:
    Reception() = default;
    virtual ~Reception() = default;
    Reception(const Reception&) = delete;
    Reception& operator=(const Reception&) = delete;

    /// Power between two IF frequencies, noise included, dBuV.
    virtual double band_power(const Settings& settings, double low_mhz, double high_mhz) const = 0;

    /// C/N of the strongest carrier in a channel around an IF, dB; 0 where there is none.
    virtual double channel_cn(const Settings& settings, double width_mhz) const = 0;

    /// What the demodulator finds when its C/N is off by so many dB.
    virtual QpskQuality qpsk(const Settings& settings, double cn_error_db) const = 0;
};

/// The sky that is the same at all times.
const Reception& fixed_reception();

/// The same of an installation of that kind, whose carriers are weaker by `fade_db`.
std::unique_ptr<const Reception> make_fixed_reception(SkyKind kind, double fade_db);

}  // namespace meter
