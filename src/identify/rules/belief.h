// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "front.h"

namespace m47::identify {

/// Ideas of the sky with the weight of each, of which the most probable has 1.
using Ideas = std::vector<std::pair<const Front*, double>>;

/// A finest grid with what it was made for; it follows what is most probable from there.
struct FinestGrid {
    Front::Best start;
    Front front;
};
/// A candidate's: around what is most probable, and around what is so of neighbours as strong as
/// the candidate, where that is another.
using Finest = std::map<std::size_t, std::vector<FinestGrid>>;

/// What is held of the sky after the answers so far: a chance for each candidate, for "none of
/// these" and for "no satellite". The arc has to outlive it.
class Belief {
  public:
    explicit Belief(const Arc& arc);

    /// Takes in what of the evidence it has not seen yet.
    void update(const Evidence& evidence);

    /// The chances of all candidates, behind them `none()` and `nothing()`; their sum is 1.
    const std::vector<double>& chances() const { return chances_; }
    std::size_t none() const { return arc_.size(); }
    std::size_t nothing() const { return arc_.size() + 1; }
    /// All of them, the most probable first.
    const std::vector<std::size_t>& order() const { return order_; }
    std::size_t best() const { return order_.front(); }

    /// A candidate's, on its finest grid.
    const Front& front(std::size_t candidate) const;
    /// The most probable ideas of the sky, whatever they lead to.
    Ideas ideas() const;

  private:
    void catch_up_coarse(const Evidence& evidence);
    void give_up_far(double least);
    bool is_given_up(std::size_t candidate) const;
    std::vector<std::size_t> worth_refining() const;
    void drop_hopeless(const std::vector<std::size_t>& wanted);
    void refine(const Evidence& evidence);
    double log_none(double best) const;
    void refine_more(const Evidence& evidence);
    const Front& unlisted(std::size_t candidate) const;
    double log_named(std::size_t candidate) const;
    double log_beside(std::size_t candidate) const;
    double log_unlisted(std::size_t candidate) const;
    void weigh_nothing(const Evidence& evidence);
    void settle();

    const Arc& arc_;
    std::vector<Front> coarse_;
    std::vector<bool> given_up_;  ///< whose coarse grid takes in no more
    std::map<std::size_t, Front> fine_;
    std::map<std::size_t, Front> unlisted_;
    Finest finest_;           ///< of the most probable ones
    Finest finest_unlisted_;  ///< the same
    std::vector<double> chances_;
    std::vector<std::size_t> order_;
    double log_nothing_ = 0;
    std::size_t nothing_seen_ = 0;
};

}  // namespace m47::identify
