// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "jitter.h"
#include "reception.h"
#include "settings.h"

namespace meter {

/// A value with its range mark: "<" below the range, ">" above it, a blank within it.
struct Reading {
    char mark = ' ';
    double value = 0.0;
};

/// Measures what is received at the tuning given. Levels are dBuV, ratios dB.
class Receiver {
  public:
    /// Both have to outlive the receiver.
    explicit Receiver(Jitter& jitter, const Reception& reception = fixed_reception());

    /// Carrier level in the measuring filter.
    double level(const Settings& settings);

    /// Power in the channel bandwidth around an IF.
    double channel_power(const Settings& settings, double if_mhz);

    /// C/N in the analog channel (27 MHz).
    double analog_cn(const Settings& settings);

    /// C/N in the bandwidth of the chosen symbol rate.
    double digital_cn(const Settings& settings);

    /// What the QPSK demodulator finds.
    QpskQuality qpsk(const Settings& settings);

    /// Level at any IF without jitter, for the span display.
    double span_level(const Settings& settings, double if_mhz) const;

  private:
    Jitter& jitter_;
    const Reception& reception_;
};

/// The level in the unit chosen, limited to 20..120 dBuV and to what the attenuator allows
/// (60 dBuV and 10 dB for each step).
Reading level_reading(double level_dbuv, const Settings& settings);

/// The C/N limited to 1..40 dB.
Reading ratio_reading(double cn_db);

}  // namespace meter
