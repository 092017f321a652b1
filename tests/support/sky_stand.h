// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace m47 {

/// The scan tables that skies are made of, read once.
class SkyTables {
  public:
    explicit SkyTables(const std::string& folder);
    ~SkyTables();
    SkyTables(const SkyTables&) = delete;
    SkyTables& operator=(const SkyTables&) = delete;

    struct Kept;
    const Kept& kept() const { return *kept_; }

  private:
    std::unique_ptr<Kept> kept_;
};

/// What one sky is like; each seed makes another one.
struct SkySettings {
    std::uint64_t seed = 1;
    double cn_db = 12;  ///< of the satellites on the axis of the dish
    /// Each neighbourhood has the power of its own that the simulated meter gives it, not `cn_db`.
    bool own_powers = false;
    double east = 0;  ///< where the dish looks, degrees
    double off_air_percent = 20;
    double unlisted_percent = 10;
    double dish_cm = 80;
    double unequal_db = 0;     ///< positions are up to so much stronger or weaker than `cn_db`
    double oscillator = 9750;  ///< MHz, of the LNB
    double tone_oscillator = 10600;  ///< the same with tone; that without where it has one band
    bool circular = false;
};

/// The simulated orbit through a dish and an LNB, with the meter's jitter, in process.
class SkyStand {
  public:
    SkyStand(const SkyTables& tables, const SkySettings& settings);
    ~SkyStand();
    SkyStand(const SkyStand&) = delete;
    SkyStand& operator=(const SkyStand&) = delete;

    double beam_width() const;  ///< degrees at -3 dB, in the middle of the Ku band
    double drift() const;       ///< MHz
    /// The time that the weather is at, seconds from the beginning.
    void set_time(double seconds);

    /// dBuV in tenths.
    double level(bool high_voltage, bool tone, double if_mhz);
    struct Lock {
        bool locked;
        double offset;  ///< MHz
    };
    Lock lock(bool high_voltage, bool tone, double if_mhz, int rate_ks);

  private:
    struct Inside;
    std::unique_ptr<Inside> inside_;
};

}  // namespace m47
