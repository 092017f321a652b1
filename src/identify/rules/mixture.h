// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <vector>

namespace m47::identify {

/// Something that may be in the measuring filter.
struct Part {
    float power = 0;        ///< as a ratio to the noise in the filter, if it is there
    float chance = 0;       ///< that it is there
    float odds = 0;         ///< the same against that nothing is in its place
    float variance = 0;     ///< dB squared, of its power, if it is there
    unsigned excluded = 0;  ///< bit k: it cannot be there together with part k
};

/// A carrier that nobody lists, of one of a few satellites.
struct Stray {
    struct Source {
        float chance = 0;  ///< that there is one
        float usual = 0;   ///< dB above the noise, where the filter is full of it
    };
    static constexpr int kMost = 3;
    std::array<Source, kMost> sources{};
    float narrow = 0;  ///< dB by which a narrow one stands higher

    float chance() const;
};

/// How a level may come about: which of a few carriers are there. The sum over all that is possible
/// gives the chance of a level, so none has to be decided.
class Mixture {
  public:
    /// `parts` are the strongest first; what goes beyond `kMost` is taken in the mean. `crossed` is
    /// the power that may come over from the other polarisation.
    static constexpr int kMost = 4;
    Mixture(const std::vector<Part>& parts, float crossed, const Stray& stray);

    /// The logarithm of the density of a level `above` the noise, in dB.
    float log_density(float above) const;

    struct Mean {
        float db;
        float variance;
    };
    /// What is expected of the level.
    Mean mean() const;

    /// What is expected of `log_density` where the level comes about like this.
    Mean usual_log() const;

    /// The chance, after a level, that just these parts are there: bit k stands for part k. What is
    /// left to a sum of 1 is something that nobody lists.
    std::array<float, 1 << kMost> shares(float above) const;
    int parts() const { return count_; }
    /// The same before the level.
    float usual_share(unsigned which) const {
        const float crossed = which == 0 ? crossed_.weight : 0;
        return (1 - stray_chance_) * (cases_[which].weight + crossed);
    }

  private:
    struct Case {
        float weight = 0;
        float db = 0;
        float variance = 0;
    };
    /// What is not one of the few, noise included.
    struct Rest {
        float power;
        float variance;
    };
    void count_parts(const std::vector<Part>& parts);
    void weigh_cases(const std::vector<Part>& parts, Rest rest);
    float density(const Case& one, float above) const;
    float stray_density(float above) const;

    int count_ = 0;
    Stray stray_;
    float stray_chance_ = 0;
    std::array<Case, 1 << kMost> cases_{};
    Case crossed_;
};

}  // namespace m47::identify
