// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "candidates.h"

namespace m47::identify {

/// The width of the filter in front of the meter's detector, MHz.
inline constexpr double kFilterMhz = 8;

/// How far off the centre, in parts of the symbol rate, the demodulator still locks.
inline constexpr double kCapture = 0.12;

/// A listed carrier with what its being there depends on.
struct Emitter {
    Carrier carrier;
    std::size_t candidate = 0;
    double chance = 0;      ///< that it is on air
    bool rivalled = false;  ///< another of its satellite's cannot be there at once
    double width = 0;       ///< of the dish's beam at its frequency, degrees at -3 dB

    /// How much less is received of it by a dish that looks at `east`, dB, 0 or above.
    double loss(double east) const;
    /// The part of the measuring filter that it fills, 0 to 1, when the LNB drifts by `drift` MHz.
    double share(double if_mhz, double drift) const;
    /// By how much that grows with each MHz of drift.
    double slope(double if_mhz, double drift) const;
};

/// True where the two cannot be on air at once: they overlap on one satellite.
bool exclude(const Carrier& one, const Carrier& other);

/// Of the transponders that a table lists so many are on air.
inline constexpr double kOnAir = 0.8;

/// All candidates along the arc, and what of the others is in the beam with each.
class Arc {
  public:
    /// Of a dish of `dish_cm`. Candidates without a position stand alone.
    explicit Arc(std::vector<Candidate> candidates, double dish_cm = 80);

    std::size_t size() const { return candidates_.size(); }
    const std::vector<Candidate>& candidates() const { return candidates_; }
    /// The width of the beam in the middle of what is received, degrees.
    double beam() const { return beam_; }

    using States = std::array<std::vector<Emitter>, kStates>;
    /// What a dish near `candidate` may receive, its own and the neighbours', by frequency.
    const States& around(std::size_t candidate) const { return around_[candidate]; }
    /// Its neighbours, nearest first.
    const std::vector<std::size_t>& neighbours(std::size_t candidate) const {
        return neighbours_[candidate];
    }
    /// True where no other candidate is nearer to `east`.
    bool is_nearest(std::size_t candidate, double east) const;
    /// Degrees from `east` to the nearest position of the candidate; 0 where it has none.
    double distance(std::size_t candidate, double east) const;

    /// The chance that some satellite, of which nothing is known, has power there.
    double usual_power(int state, double if_mhz) const;
    /// The chance that something is there which is the candidate's but which its tables do not
    /// list.
    double unlisted(std::size_t candidate, int state, double if_mhz) const;

  private:
    std::vector<Emitter> emitters_of(std::size_t candidate, double dish_cm) const;
    void find_neighbours();
    void gather(const std::vector<std::vector<Emitter>>& own);
    void count_usual(const std::vector<std::vector<Emitter>>& own);
    void count_unlisted(const std::vector<std::vector<Emitter>>& own);

    std::vector<Candidate> candidates_;
    double beam_ = 0;
    std::vector<States> around_;
    std::vector<std::vector<std::size_t>> neighbours_;
    /// By place of the band, as `usual_`.
    using Band = std::array<std::vector<double>, kStates>;
    static void add_unlisted(Band& band, const Emitter& emitter);
    std::vector<Band> unlisted_;
    Band usual_;
};

}  // namespace m47::identify
