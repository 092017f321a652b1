// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "jitter.h"
#include "scan_tables.h"

namespace meter {

/// What chance is asked for when a sky is made.
struct OrbitOptions {
    std::uint64_t seed = 1;
    double dish_cm = 80.0;
    std::optional<double> cn_db;  ///< of every satellite on the axis; else by its EIRP and the dish
    double unequal_db = 0.0;      ///< with `cn_db`: how far a satellite's usual one is from it
    double spread_db = 1.5;       ///< how far a transponder is from its satellite's usual one
    double off_air_percent = 20.0;   ///< of the transponders listed
    double unlisted_percent = 10.0;  ///< transponders that no table lists, of the number listed
    double drift_mhz = 3.0;          ///< the converter has drifted by at most this
    double weather_db = 1.0;         ///< the deepest fade
    double fade_db = 0.0;            ///< by which all satellites are weaker at all times
};

/// A transponder that is on the air.
struct OnAir {
    ListedTransponder transponder;
    double east = 0.0;   ///< of its satellite
    double cn_db = 0.0;  ///< on the axis, in clear sky, in the bandwidth of its symbol rate
    bool listed = true;
};

/// Satellites so close to one another that they share out the frequencies among them.
struct Neighbourhood {
    std::size_t first = 0;  ///< of the tables' positions
    std::size_t count = 0;
    double west = 0.0;
    double east = 0.0;
};

/// The arc of the geostationary satellites as chance has made it of the tables: the same seed, the
/// same sky, and each neighbourhood is the same whether others are looked at or not.
class Orbit {
  public:
    /// The tables are not copied and have to outlive the orbit; other orbits can share them.
    Orbit(const ScanTables& tables, const OrbitOptions& options);

    /// All that is on the air within so many degrees of a position, whole neighbourhoods.
    std::vector<OnAir> around(double east, double within) const;

    /// How far the converter has drifted, MHz.
    double drift_mhz() const { return drift_mhz_; }

    /// The fade of all satellites at a time in seconds, dB: that of all times and that of the
    /// weather.
    double fade_db(double seconds) const;

    const OrbitOptions& options() const { return options_; }

  private:
    double usual_cn(const ListedTransponder& transponder, double stronger_db) const;
    std::vector<OnAir> on_air(const Neighbourhood& neighbourhood) const;

    const ScanTables& tables_;
    OrbitOptions options_;
    std::vector<Neighbourhood> neighbourhoods_;
    double drift_mhz_;
    double fade_phase_;
};

/// The neighbourhoods of the tables: a gap of more than half a degree parts them.
std::vector<Neighbourhood> neighbourhoods_of(const ScanTables& tables);

}  // namespace meter
