// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "settings.h"

namespace meter {

/// One carrier as it arrives at the meter's input.
struct Carrier {
    double if_mhz;
    double level_dbuv;
    double bandwidth_mhz;
    int symbol_rate;    ///< kS/s; 0 for an analog carrier
    double link_cn_db;  ///< C/N that dish and weather allow
    double drift_mhz;   ///< how far the converter has drifted

    bool digital() const { return symbol_rate > 0; }
};

/// What one polarisation and band delivers.
struct Spectrum {
    const char* name;
    std::span<const Carrier> carriers;
    double floor_dbuv_per_mhz;  ///< noise density at 920 MHz
    double tilt_db;             ///< change of the density up to 2150 MHz

    /// Noise density at an IF, dBuV in 1 MHz.
    double noise_density(double if_mhz) const;
};

/// Share (0..1) of a carrier's power between two IF frequencies.
double power_share(const Carrier& carrier, double low_mhz, double high_mhz);

/// Power between two IF frequencies, noise included, dBuV.
double band_power(const Spectrum& spectrum, double low_mhz, double high_mhz);

/// The carrier that puts most power between two IF frequencies, or null when none does.
const Carrier* strongest(const Spectrum& spectrum, double low_mhz, double high_mhz);

/// The four spectra of the installation: 13 V / 18 V, each with tone off / on.
const Spectrum& satellite_spectrum(bool high_voltage, bool tone);

/// The terrestrial input: no aerial is connected, noise only.
const Spectrum& terrestrial_spectrum();

/// What becomes of the sky on its way to the meter.
enum class SkyKind {
    good,         ///< a sound installation
    failing_lnb,  ///< its high band is weak, and its oscillator there has drifted
    off_peak      ///< the dish points beside the satellite
};

/// The kind of this name, as --sky takes it; nothing for any other text.
std::optional<SkyKind> sky_kind(std::string_view name);

/// The four spectra of an installation as they arrive at the meter.
class Sky {
  public:
    /// Every carrier is weaker by `fade_db`, and its C/N lower.
    explicit Sky(SkyKind kind, double fade_db = 0.0);
    Sky(const Sky&) = delete;
    Sky& operator=(const Sky&) = delete;

    /// What the settings let the meter receive. With the LNB supply off the installation is fed by
    /// another receiver, which asks for 13 V without tone.
    const Spectrum& received(const Settings& settings) const;

  private:
    static constexpr std::size_t kBands = 4;

    std::array<std::vector<Carrier>, kBands> carriers_;
    std::array<Spectrum, kBands> spectra_{};
};

}  // namespace meter
