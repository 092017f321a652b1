// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "lnb.h"
#include "orbit.h"
#include "reception.h"

namespace meter {

/// What a dish that looks at one place of the arc hands down to the meter. Turning the dish or the
/// time is cheap enough for each measurement; nothing is read from the tables between two turns.
class OrbitReception : public Reception {
  public:
    /// The orbit has to outlive it. Nothing is received before the dish is pointed.
    explicit OrbitReception(const Orbit& orbit, const Lnb& lnb = {});

    /// Points the dish, degrees east.
    void point(double east);
    double pointing() const { return east_; }

    /// The time that the weather is at, seconds from any beginning.
    void set_time(double seconds);

    double band_power(const Settings& settings, double low_mhz, double high_mhz) const override;
    double channel_cn(const Settings& settings, double width_mhz) const override;
    QpskQuality qpsk(const Settings& settings, double cn_error_db) const override;

  private:
    /// A carrier at the meter's input.
    struct Ray {
        double if_mhz = 0.0;
        double symbol_mhz = 0.0;
        double density = 0.0;   ///< of its plateau in clear sky, as a power ratio to 1 uV in 1 MHz
        double clear_cn = 0.0;  ///< the same, as a ratio to the noise
        int symbol_rate = 0;
        InnerCode code = InnerCode::r3_4;
        bool second_generation = false;
    };
    using Rays = std::vector<Ray>;

    const Rays* rays_at(const Settings& settings) const;
    void add(const OnAir& on_air);
    double power_of(const Ray& ray, double low_mhz, double high_mhz) const;
    double carriers_power(const Rays& rays, double low_mhz, double high_mhz) const;
    const Ray* strongest_of(const Rays& rays, double low_mhz, double high_mhz) const;
    const Ray* locked_ray(const Rays& rays, const Settings& settings) const;
    double matched_cn(const Rays& rays, const Ray& ray) const;

    const Orbit& orbit_;
    Lnb lnb_;
    double east_ = 0.0;
    double fade_ = 1.0;  ///< of the carriers' power, a ratio
    std::vector<OnAir> in_reach_;
    std::optional<double> kept_around_;
    double reach_ = 0.0;
    std::array<std::array<Rays, 2>, 2> rays_;
};

/// Noise density at the meter's input at an IF, dBuV in 1 MHz: the converter's own, down the cable.
double orbit_noise_density(double if_mhz);

}  // namespace meter
