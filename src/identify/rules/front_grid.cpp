// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <cmath>

#include "decibel.h"
#include "front.h"

namespace m47::identify {
namespace {

/// How likely neighbours are as strong as the candidate, where carriers of any width stand equally
/// high and where they have equal power. Where they are not the levels say so soon.
constexpr double kEqualIfAlike = 0.99;
constexpr double kEqualIfNot = 0.5;
constexpr double kAlike = 0.9;
constexpr double kUnequalDb = 3;
/// Whose carriers are weaker by more, dB, adds nothing that stands out.
constexpr double kNearDb = 12;
/// The dish is at a candidate up to so many beams beside it.
constexpr double kAtIt = 0.58;
/// and next to it up to so many
constexpr double kNextToIt = 1.5;
/// and somebody else is in the beam no more than so many from it.
constexpr double kBesideIt = 2.7;
/// What nobody lists stands so far from all that is listed, in beams.
constexpr double kApart = 0.15;
/// How far apart places on the grids are, in beams, and how much there is of the other unknowns.
constexpr double kCoarseStep = 0.25;
constexpr double kFineStep = 0.09;
constexpr double kFinestStep = 0.02;
constexpr double kUnlistedStep = 0.17;
constexpr double kMostDrift = 3;  // MHz
constexpr double kAllDrifts = 7;
constexpr double kAllCns = 20;
constexpr double kLeastCn = 6.5;
constexpr double kMostCn = 26;

std::vector<double> steps(double first, double step, double last) {
    std::vector<double> values;
    const int count = static_cast<int>((last - first) / step + 1.01);
    values.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) values.push_back(first + k * step);
    return values;
}

}  // namespace

Front::Front(const Arc& arc, std::size_t candidate, Kind kind, Grid grid, const Front* coarser)
    : arc_(&arc), candidate_(candidate), kind_(kind) {
    make_places(grid);
    const bool fine = grid == Grid::fine;
    const bool finer = fine && kind == Kind::listed;
    drifts_ = fine ? steps(finer ? -kMostDrift : -2, finer ? 1.5 : 2, kMostDrift) : steps(-2, 2, 2);
    cns_ = finer ? steps(7, 1.5, kMostCn) : steps(9, 3, kMostCn);
    if (coarser != nullptr) cns_ = cns_within(*coarser);
    drift_spread_ = (finer ? 1.5 : 2) / std::sqrt(12.0);
    const double of_others = finer ? 1.5 * 1.5 : 2 * 3;
    const double step = fine ? (finer ? kFineStep : kUnlistedStep) : kCoarseStep;
    make_losses({1});
    make_strengths(grid, coarser);
    make_cells(step * arc.beam() * of_others);
}

Front::Front(const Arc& arc, std::size_t candidate, Kind kind, const Best& around)
    : arc_(&arc), candidate_(candidate), kind_(kind) {
    const double step = kind == Kind::listed ? kFinestStep : kUnlistedStep / 3;
    const int count = kind == Kind::listed ? 6 : 2;
    const double drift_step = kind == Kind::listed ? 0.25 : 0.5;
    const double cn_step = kind == Kind::listed ? 0.5 : 0.75;
    for (int k = -count; k <= count; ++k) add_place(around.east + k * step * arc.beam());
    drifts_ = steps(std::max(-kMostDrift, around.drift - 0.75), drift_step,
                    std::min(kMostDrift, around.drift + 0.75));
    cns_ = steps(std::max(kLeastCn, around.cn - 2 * cn_step), cn_step, around.cn + 2 * cn_step);
    drift_spread_ = drift_step / std::sqrt(12.0);
    make_losses(kind == Kind::listed ? std::vector<double>{} : std::vector<double>{0.2, 1.2, 2.5});
    make_strengths_around(around);
    make_cells(step * arc.beam() * drift_step * cn_step);
}

void Front::add_place(double east) {
    const double away = arc_->distance(candidate_, east) / arc_->beam();
    if (!arc_->is_nearest(candidate_, east)) return;
    if (kind_ == Kind::unlisted && away <= kApart) return;
    Place place{east, kind_ == Kind::listed && away <= kAtIt, 12 * away * away};
    find_near(place);
    places_.push_back(std::move(place));
}

void Front::find_near(Place& place) const {
    const auto add = [&](std::size_t candidate) {
        const double away = arc_->distance(candidate, place.east) / arc_->beam();
        const double loss = 12 * away * away;
        if (loss < kNearDb) place.near.push_back({candidate, loss});
    };
    add(candidate_);
    for (const std::size_t other : arc_->neighbours(candidate_)) add(other);
    std::ranges::stable_sort(place.near, {}, [](const Place::Near& near) { return near.loss; });
    const std::size_t most = Stray::kMost - (kind_ == Kind::unlisted ? 1 : 0);
    if (place.near.size() > most) place.near.resize(most);
}

void Front::make_places(Grid grid) {
    const std::vector<double>& positions = arc_->candidates()[candidate_].positions;
    if (positions.empty()) {
        Place place{0, kind_ == Kind::listed, 0, {{candidate_, 0}}};
        places_.push_back(std::move(place));
        return;
    }
    const double beam = arc_->beam();
    const bool fine = grid == Grid::fine && kind_ == Kind::listed;
    const double far = (grid == Grid::coarse ? 2 * kCoarseStep : kNextToIt) * beam;
    const double middle = (positions.front() + positions.back()) / 2;
    const double half = (positions.back() - positions.front()) / 2 + far;
    const double step = beam * (fine                   ? kFineStep
                                : grid == Grid::coarse ? kCoarseStep
                                                       : kUnlistedStep);
    const int count = static_cast<int>(half / step);
    for (int k = -count; k <= count; ++k) add_place(middle + k * step);
    if (kind_ == Kind::listed) add_borders();
    if (places_.empty() && kind_ == Kind::listed)
        places_.push_back({middle, true, 0, {{candidate_, 0}}});
}

/// Where it is as near to a neighbour: there two fronts say the same, and have to be as probable.
void Front::add_borders() {
    const double inside = kFinestStep / 2 * arc_->beam();
    for (const std::size_t other : arc_->neighbours(candidate_))
        for (const double theirs : arc_->candidates()[other].positions)
            for (const double own : arc_->candidates()[candidate_].positions) {
                const double border = (own + theirs) / 2;
                if (arc_->distance(candidate_, border) < kNextToIt * arc_->beam())
                    add_place(border + (own > theirs ? inside : -inside));
            }
}

/// The chance of these, of `count` that there are beside equal ones.
double Front::chance_of(bool alike, bool equal, int count) {
    const double equally = alike ? kEqualIfAlike : kEqualIfNot;
    return (alike ? kAlike : 1 - kAlike) * (equal ? equally : (1 - equally) / count);
}

/// True where somebody else may be in the beam.
bool Front::has_near_neighbour() const {
    return std::ranges::any_of(arc_->neighbours(candidate_), [&](std::size_t other) {
        return std::ranges::any_of(arc_->candidates()[other].positions, [&](double east) {
            return arc_->distance(candidate_, east) < kBesideIt * arc_->beam();
        });
    });
}

bool Front::holds(bool alike) const {
    return std::ranges::any_of(
        cells_, [&](const Cell& cell) { return strengths_[cell.setting.strength].alike == alike; });
}

/// Those of this grid that are no further than a step of the coarser one from what it still holds.
std::vector<double> Front::cns_within(const Front& coarser) const {
    constexpr double kStep = 3;
    std::vector<double> within;
    for (const double cn : cns_)
        if (std::ranges::any_of(coarser.cells_, [&](const Cell& cell) {
                return std::abs(coarser.cns_[cell.cn] - cn) <= kStep;
            }))
            within.push_back(cn);
    return within.empty() ? cns_ : within;
}

void Front::make_strengths(Grid grid, const Front* coarser) {
    const bool alone = !has_near_neighbour();
    for (const bool alike : {true, false}) {
        if (coarser != nullptr && !coarser->holds(alike)) continue;
        if (grid == Grid::coarse || alone) {
            strengths_.push_back({alike, 0, alike ? kAlike : 1 - kAlike});
            continue;
        }
        for (const double others : {0.0, -kUnequalDb, kUnequalDb}) {
            // A stronger listed one would be what the dish looks at.
            if (kind_ == Kind::unlisted && others > 0) continue;
            strengths_.push_back({alike, others, chance_of(alike, others == 0, 2)});
        }
    }
}

void Front::make_strengths_around(const Best& best) {
    if (best.others == 0) {
        strengths_.push_back({best.alike, 0, chance_of(best.alike, true, 1)});
        return;
    }
    for (const double more : {-1.3, 0.0, 1.3})
        strengths_.push_back({best.alike, best.others + more, chance_of(best.alike, false, 2 * 3)});
}

void Front::make_powers() {
    for (const double cn : cns_) on_axis_.push_back(static_cast<float>(ratio(cn)));
    const auto full = [](double cn) { return static_cast<float>(10 * std::log10(1 + ratio(cn))); };
    for (const Place& place : places_)
        for (const double cn : cns_)
            for (std::size_t k = 0; k < Stray::kMost; ++k)
                near_db_.push_back(k < place.near.size() ? full(cn - place.near[k].loss) : 0);
    for (const Unlisted& unlisted : occupied_)
        for (const double cn : cns_) own_db_.push_back(full(cn - unlisted.loss));
}

void Front::make_losses(const std::vector<double>& losses) {
    if (kind_ == Kind::listed) occupied_.push_back({});
    if (kind_ == Kind::unlisted)
        for (const double fills : {0.3, 0.7, 1.1})
            for (const double loss : losses) occupied_.push_back({fills, loss});
}

void Front::make_cells(double volume) {
    make_powers();
    const auto all = [](const auto& steps) { return static_cast<std::uint8_t>(steps.size()); };
    for (std::uint8_t drift = 0; drift < all(drifts_); ++drift)
        for (std::uint8_t place = 0; place < all(places_); ++place)
            for (std::uint8_t occupied = 0; occupied < all(occupied_); ++occupied)
                for (std::uint8_t strength = 0; strength < all(strengths_); ++strength) {
                    // What is held before any evidence has its full weight.
                    const double before = std::log(strengths_[strength].chance) / kTrust;
                    for (std::uint32_t cn = 0; cn < cns_.size(); ++cn)
                        cells_.push_back(
                            {{drift, place, occupied, strength}, cn, static_cast<float>(before)});
                }
    log_cell_ = std::log(volume / (kAllDrifts * kAllCns * 2 * kNextToIt * arc_->beam() *
                                   static_cast<double>(occupied_.size())));
}

bool Front::is_at_its_end() const {
    if (cells_.empty()) return false;
    const Best most = best();
    const auto ends = [](const std::vector<double>& values, double value, double low, double high) {
        return (value == values.front() && value > low) || (value == values.back() && value < high);
    };
    return ends(drifts_, most.drift, -kMostDrift, kMostDrift) ||
           ends(cns_, most.cn, kLeastCn, kMostCn);
}

}  // namespace m47::identify
