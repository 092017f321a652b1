// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "arc.h"
#include "mixture.h"

namespace m47::identify {

/// Levels are not quite independent of one another, so each counts for so much less.
inline constexpr double kTrust = 0.5;

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
        bool is_at(const Best& other) const {
            return drift == other.drift && east == other.east && cn == other.cn &&
                   alike == other.alike && others == other.others;
        }
        double drift = 0;  ///< MHz
        double east = 0;   ///< where the dish looks
        double cn = 0;     ///< dB, of a satellite on its axis
        double log = 0;
        bool alike = true;  ///< narrow carriers stand as high as wide ones
        double others = 0;  ///< dB by which the neighbours are stronger
    };

    /// On a fine grid what `coarser` has ruled out is left out.
    Front(const Arc& arc, std::size_t candidate, Kind kind, Grid grid,
          const Front* coarser = nullptr);
    /// The finest grid, around what was found most probable on a fine one.
    Front(const Arc& arc, std::size_t candidate, Kind kind, const Best& around);

    /// Takes in what of the evidence it has not seen yet, of levels no more than the first `most`.
    void catch_up(const Evidence& evidence, std::size_t most = SIZE_MAX);

    /// The logarithms of how well the evidence fits: with the dish at the candidate, and with the
    /// dish where nothing is that could be named.
    double log_named() const { return log_sum(true); }
    double log_beside() const { return log_sum(false); }

    /// Where satellites stand so close, in beams, that nothing unlisted has a place between them.
    bool holds_nothing() const { return cells_.empty(); }
    Best best() const;
    /// The same of those where the neighbours are as strong as the candidate, if any are left.
    std::optional<Best> best_of_equals() const;
    /// True where the most probable cell is at the end of a grid, so that what is more probable may
    /// lie beyond it.
    bool is_at_its_end() const;

    /// By how many standard deviations the levels fit better (worse below 0), at the most probable
    /// unknowns, than levels that come about like this usually do.
    double fit(const Evidence& evidence) const;
    /// What the levels come from, counted by its chances at the most probable unknowns, beside what
    /// is usual there.
    struct Account {
        double strays = 0;  ///< what nobody lists
        double usual_strays = 0;
        double own = 0;  ///< what the candidate lists
        double usual_own = 0;
    };
    Account account(const Evidence& evidence) const;

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
        /// Whose unlisted carriers reach the dish there, the strongest first.
        struct Near {
            std::size_t candidate;
            double loss;  ///< dB
        };
        std::vector<Near> near{};
    };
    /// What an unlisted satellite is like.
    struct Unlisted {
        double fills = 0;  ///< how much of the band, against what the scan shows
        double loss = 0;   ///< dB, as it may be beside the axis
    };
    /// How strong the satellites are beside one another.
    struct Strength {
        bool alike = true;  ///< carriers of any width stand equally high, else have equal power
        double others = 0;  ///< dB by which the neighbours are stronger
        double chance = 1;
    };
    /// All that the carriers at 0 dB of C/N on the axis depend on.
    struct Setting {
        std::uint8_t drift = 0;
        std::uint8_t place = 0;
        std::uint8_t occupied = 0;
        std::uint8_t strength = 0;
        bool operator==(const Setting&) const = default;
    };
    /// Those of a setting stand together.
    struct Cell {
        Setting setting{};
        std::uint32_t cn = 0;
        float log = 0;
    };
    /// A carrier that reaches into the filter.
    struct Ray {
        const Emitter* emitter;
        double share;
        double loss;      ///< dB, as it comes over from the other polarisation
        double variance;  ///< dB squared, as it is not known where in the filter its edge is
    };

    void make_places(Grid grid);
    void add_borders();
    void find_near(Place& place) const;
    bool has_near_neighbour() const;
    bool holds(bool alike) const;
    void make_strengths(Grid grid, const Front* coarser);
    std::vector<double> cns_within(const Front& coarser) const;
    void make_strengths_around(const Best& best);
    static double chance_of(bool alike, bool equal, int count);
    void make_powers();
    void make_losses(const std::vector<double>& losses);
    void add_place(double east);
    void make_cells(double volume);
    std::vector<Ray> rays(int state, double if_mhz, double drift) const;
    void add_rays(std::vector<Ray>& found, int state, double if_mhz, double drift,
                  double loss) const;
    /// The same as the dish hears it, from one place, at 0 dB of C/N on the axis.
    struct Heard {
        Part part;
        const Emitter* emitter;  ///< nothing for what no candidate is
        double share = 1;        ///< of the filter
    };
    /// What no candidate is: the chance that it is there, and its power against one on the axis.
    struct Own {
        double chance = 0;
        double power = 1;
    };
    std::vector<Heard> heard(const std::vector<Ray>& rays, const Place& place,
                             const Strength& strength, Own own) const;
    static void part_from_rivals(std::vector<Heard>& heard, std::size_t k);
    std::vector<Heard> parts(const std::vector<Ray>& rays, const Setting& setting, Own own) const;
    /// What nobody lists, at a frequency, but for how strong it is.
    using Chances = std::array<float, Stray::kMost>;
    Chances unlisted_near(int state, double if_mhz, const Place& place) const;
    Mixture mixture(const std::vector<Heard>& parts, const Cell& cell, const Chances& unlisted,
                    double usual) const;
    Mixture mixture_at(const Cell& cell, int state, double if_mhz,
                       std::vector<Heard>* made_of = nullptr) const;
    void take(const Height& height);
    void take(const LockTry& trial);
    void take_new(const std::vector<Height>& heights, std::size_t end);
    void drop_cells();
    void find_most();
    Best best_of(const Cell& cell) const;
    bool is_own(const std::vector<Heard>& heard, unsigned which) const;
    Own own(int state, double if_mhz, const Unlisted& unlisted) const;
    double lock_density(const Cell& cell, const LockTry& trial) const;
    double log_sum(bool named) const;

    const Arc* arc_;
    std::size_t candidate_;
    Kind kind_;
    std::vector<Place> places_;
    std::vector<double> drifts_;
    std::vector<double> cns_;
    std::vector<float> on_axis_;  ///< the same as power ratios
    std::vector<float> near_db_;  ///< of who is near, by place, C/N and which of them
    std::vector<float> own_db_;   ///< of what no candidate is, by `occupied_` and C/N
    std::vector<Unlisted> occupied_;
    std::vector<Strength> strengths_;
    double drift_spread_ = 0;  ///< MHz, by which a drift is off its place on the grid
    std::vector<Cell> cells_;
    double log_cell_ = 0;               ///< the weight of a cell before any evidence
    mutable std::vector<Part> scaled_;  ///< kept, as it is needed for each cell of each level
    std::array<double, kStates> filled_{};
    std::size_t most_ = 0;  ///< the cell that is most probable
    std::size_t heights_ = 0;
    std::size_t locks_ = 0;
};

}  // namespace m47::identify
