// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "arc.h"
#include "mixture.h"

namespace m47::identify {

/// A level against the noise floor.
struct Height {
    int state = 0;
    double if_mhz = 0;
    double db = 0;
};

/// A lock that was tried.
struct LockTry {
    int state = 0;
    double if_mhz = 0;
    double rate = 0;   ///< MS/s
    double above = 0;  ///< the level there, dB over the noise
    bool locked = false;
    std::optional<double> offset{};  ///< MHz from the frequency asked, where a lock tells it
};

/// What has been seen of the sky.
struct Evidence {
    std::vector<Height> heights;
    std::vector<LockTry> locks;
    /// How much of the band is filled in each state, 0 to 1, as the scan has shown it.
    std::array<double, kStates> filled{};
};

/// One idea of what the dish looks at: a candidate, or something that no candidate is near a
/// candidate's place. Where exactly it looks, how strong the satellites are and how far the LNB has
/// drifted nobody knows: each is held possible on a grid.
class Front {
  public:
    enum class Kind { listed, unlisted };
    /// A coarse grid is for telling which candidates are worth a fine one.
    enum class Grid { coarse, fine };
    /// What is most probable of the unknowns.
    struct Best {
        double drift = 0;  ///< MHz
        double east = 0;   ///< where the dish looks
        double cn = 0;     ///< dB, of a satellite on its axis
        double log = 0;
    };

    Front(const Arc& arc, std::size_t candidate, Kind kind, Grid grid);
    /// The finest grid, around what was found most probable on a fine one.
    Front(const Arc& arc, std::size_t candidate, Kind kind, const Best& around);

    /// Takes in what of the evidence it has not seen yet.
    void catch_up(const Evidence& evidence);

    /// The logarithms of how well the evidence fits: with the dish at the candidate, and with the
    /// dish where nothing is that could be named. `trust` (0 to 1) is the weight of the evidence.
    double log_named(double trust) const { return log_sum(true, trust); }
    double log_beside(double trust) const { return log_sum(false, trust); }

    Best best() const;

    /// What is expected of a level at the most probable unknowns.
    Mixture::Mean expect(int state, double if_mhz) const;
    /// The chance of a lock, at the same.
    double lock_chance(const LockTry& trial) const;

    std::size_t candidate() const { return candidate_; }
    Kind kind() const { return kind_; }

  private:
    struct Place {
        double east = 0;
        bool named = false;
        double loss = 0;  ///< dB, of the candidate
    };
    struct Cell {
        std::uint16_t place = 0;
        std::uint16_t drift = 0;
        std::uint16_t cn = 0;
        std::uint16_t occupied = 0;
        float log = 0;
    };
    /// A carrier that reaches into the filter.
    struct Ray {
        const Emitter* emitter;
        double share;
    };

    void make_places(Grid grid);
    void add_place(double east);
    void make_cells(double volume);
    std::vector<Ray> rays(int state, double if_mhz, double drift) const;
    /// The same as the dish hears it, from one place, at 0 dB of C/N on the axis.
    struct Heard {
        Part part;
        const Emitter* emitter;  ///< nothing for what no candidate is
    };
    static std::vector<Heard> heard(const std::vector<Ray>& rays, const Place& place, double usual);
    static void part_from_rivals(std::vector<Heard>& heard, std::size_t k);
    std::vector<Part> parts(const std::vector<Ray>& rays, const Place& place, double usual,
                            std::vector<const Emitter*>* order = nullptr) const;
    Mixture mixture(const std::vector<Part>& parts, std::size_t place, std::size_t cn,
                    double usual) const;
    void take(const Height& height);
    void take(const LockTry& trial);
    double usual(int state, double if_mhz, double occupied) const;
    double lock_density(const Cell& cell, const LockTry& trial) const;
    double log_sum(bool named, double trust) const;

    const Arc& arc_;
    std::size_t candidate_;
    Kind kind_;
    std::vector<Place> places_;
    std::vector<double> drifts_;
    std::vector<double> cns_;
    std::vector<float> on_axis_;    ///< the same as power ratios
    std::vector<float> usual_db_;   ///< of the candidate's own carriers, by place and C/N
    std::vector<double> occupied_;  ///< how much of what no candidate is, against the usual
    std::vector<Cell> cells_;
    double log_cell_ = 0;  ///< the weight of a cell before any evidence
    float unlisted_ = 0;
    mutable std::vector<Part> scaled_;  ///< kept, as it is needed for each cell of each level
    std::array<double, kStates> filled_{};
    std::size_t heights_ = 0;
    std::size_t locks_ = 0;
};

}  // namespace m47::identify
