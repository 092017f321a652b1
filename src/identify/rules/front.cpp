// SPDX-License-Identifier: GPL-3.0-or-later
#include "front.h"

#include <algorithm>
#include <cmath>

namespace m47::identify {
namespace {

/// What may come over from the other polarisation, as a power ratio and in dB.
constexpr float kCrossPolar = 0.006F;
constexpr double kCrossPolarDb = 22;
/// How far transponders of a satellite differ from one another, dB.
constexpr double kSpread = 0.9;
/// Where carriers have equal power, those of this rate, MS/s, have the C/N that is told of.
constexpr double kUsualRate = 27.5;
/// and narrow ones that fill the filter in part stand higher by about this, dB.
constexpr float kNarrowHigher = 5.5F;
constexpr double kNarrowSpread = 2.2;
/// How likely neighbours are as strong as the candidate, where carriers of any width stand equally
/// high and where they have equal power. Where they are not the levels say so soon.
constexpr double kEqualIfAlike = 0.99;
constexpr double kEqualIfNot = 0.5;
constexpr double kAlike = 0.9;
constexpr double kUnequalDb = 3;
/// The edge of a carrier makes a level uncertain by at most this, dB.
constexpr double kMostOfEdge = 5;
/// A cell is left out for good where it is so much less probable than the most probable one.
constexpr float kDropped = 30;
constexpr std::size_t kDropEach = 4;
constexpr std::size_t kDroppedSoon = 24;
/// Whose carriers are weaker by more, dB, adds nothing that stands out.
constexpr double kNearDb = 12;
/// A carrier that fills less of the filter is not counted.
constexpr double kLeastShare = 0.01;
constexpr double kFaintDb = 26;
constexpr std::size_t kPartsHeld = Mixture::kMost;
constexpr double kWidestHalf = 35;  // MHz: half of a carrier, drift and filter
/// The dish is at a candidate up to so many beams beside it.
constexpr double kAtIt = 0.58;
/// and next to it up to so many
constexpr double kNextToIt = 1.5;
/// and somebody else is in the beam no more than so many from it.
constexpr double kBesideIt = 2.7;
/// What nobody lists stands so far from all that is listed, in beams.
constexpr double kApart = 0.15;
/// How far apart places on the grids are, in beams, and how much there is of the other unknowns.
constexpr double kCoarseStep = 0.35;
constexpr double kFineStep = 0.09;
constexpr double kFinestStep = 0.02;
constexpr double kUnlistedStep = 0.17;
constexpr double kMostDrift = 3;  // MHz
constexpr double kAllDrifts = 7;
constexpr double kAllCns = 20;
constexpr double kLeastCn = 6.5;
constexpr double kMostCn = 26;
/// The chance that nothing is where several that exclude one another are listed is at least this.
constexpr float kLeastDark = 0.1F;
/// Of what no candidate is so much reaches into the filter with its edge alone.
constexpr double kEdges = 0.3;
constexpr double kBySatellites = 0.25;
constexpr double kMostFilled = 0.95;
constexpr double kListedRate = 0.01;
/// Where a demodulator locks, dB of C/N, and how sharply.
constexpr double kNeeded = 6.2;
constexpr double kNeededSpread = 0.7;
constexpr double kLockOfUnlisted = 0.04;
constexpr double kLockOfNothing = 0.002;
constexpr double kMostLock = 0.97;
/// How well an offset is told, MHz, by the grid of drifts too.
constexpr double kOffsetSpread = 0.5;
constexpr double kCaptureSpread = 0.25;

double ratio(double db) {
    return std::pow(10.0, db / 10);
}

double logistic(double x) {
    return 1 / (1 + std::exp(-x));
}

std::vector<double> steps(double first, double step, double last) {
    std::vector<double> values;
    const int count = static_cast<int>((last - first) / step + 1.01);
    values.reserve(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) values.push_back(first + k * step);
    return values;
}

/// The chance that a demodulator captures a carrier: the drift is known to a fraction of a MHz.
double captured(const Carrier& carrier, const LockTry& trial, double drift) {
    if (!carrier.lockable || std::abs(carrier.rate - trial.rate) > kListedRate * trial.rate)
        return 0;
    const double off = std::abs(carrier.if_mhz + drift - trial.if_mhz);
    return logistic((kCapture * trial.rate - off) / kCaptureSpread);
}

/// How well an offset fits a carrier, against one from anywhere in the capture range.
double offset_density(const LockTry& trial, const Carrier& carrier, double drift) {
    if (!trial.locked || !trial.offset) return 1;
    const double off = (*trial.offset - (carrier.if_mhz + drift - trial.if_mhz)) / kOffsetSpread;
    return std::exp(-off * off / 2) / (kOffsetSpread * 2.5066) * 2 * kCapture * trial.rate;
}

}  // namespace

Front::Front(const Arc& arc, std::size_t candidate, Kind kind, Grid grid, const Front* coarser)
    : arc_(arc), candidate_(candidate), kind_(kind) {
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
    : arc_(arc), candidate_(candidate), kind_(kind), around_(around) {
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
    const double away = arc_.distance(candidate_, east) / arc_.beam();
    if (!arc_.is_nearest(candidate_, east)) return;
    if (kind_ == Kind::unlisted && away <= kApart) return;
    Place place{east, kind_ == Kind::listed && away <= kAtIt, 12 * away * away};
    find_near(place);
    places_.push_back(std::move(place));
}

void Front::find_near(Place& place) const {
    const auto add = [&](std::size_t candidate) {
        const double away = arc_.distance(candidate, place.east) / arc_.beam();
        const double loss = 12 * away * away;
        if (loss < kNearDb) place.near.push_back({candidate, loss});
    };
    add(candidate_);
    for (const std::size_t other : arc_.neighbours(candidate_)) add(other);
    std::ranges::stable_sort(place.near, {}, [](const Place::Near& near) { return near.loss; });
    const std::size_t most = Stray::kMost - (kind_ == Kind::unlisted ? 1 : 0);
    if (place.near.size() > most) place.near.resize(most);
}

void Front::make_places(Grid grid) {
    const std::vector<double>& positions = arc_.candidates()[candidate_].positions;
    if (positions.empty()) {
        Place place{0, kind_ == Kind::listed, 0, {{candidate_, 0}}};
        places_.push_back(std::move(place));
        return;
    }
    const double beam = arc_.beam();
    const bool fine = grid == Grid::fine && kind_ == Kind::listed;
    const double far = grid == Grid::coarse ? kCoarseStep * beam : kNextToIt * beam;
    const double middle = (positions.front() + positions.back()) / 2;
    const double half = (positions.back() - positions.front()) / 2 + far;
    const double step = beam * (fine                   ? kFineStep
                                : grid == Grid::coarse ? kCoarseStep
                                                       : kUnlistedStep);
    const int count = static_cast<int>(half / step);
    for (int k = -count; k <= count; ++k) add_place(middle + k * step);
    if (places_.empty() && kind_ == Kind::listed)
        places_.push_back({middle, true, 0, {{candidate_, 0}}});
}

/// The chance of these, of `count` that there are beside equal ones.
double Front::chance_of(bool alike, bool equal, int count) {
    const double equally = alike ? kEqualIfAlike : kEqualIfNot;
    return (alike ? kAlike : 1 - kAlike) * (equal ? equally : (1 - equally) / count);
}

/// True where somebody else may be in the beam.
bool Front::has_near_neighbour() const {
    return std::ranges::any_of(arc_.neighbours(candidate_), [&](std::size_t other) {
        return std::ranges::any_of(arc_.candidates()[other].positions, [&](double east) {
            return arc_.distance(candidate_, east) < kBesideIt * arc_.beam();
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
    log_cell_ = std::log(volume / (kAllDrifts * kAllCns * 2 * kNextToIt * arc_.beam() *
                                   static_cast<double>(occupied_.size())));
}

void Front::add_rays(std::vector<Ray>& found, int state, double if_mhz, double drift,
                     double loss) const {
    const std::vector<Emitter>& all = arc_.around(candidate_)[static_cast<std::size_t>(state)];
    auto next = std::ranges::lower_bound(all, if_mhz - kWidestHalf, {},
                                         [](const Emitter& e) { return e.carrier.if_mhz; });
    for (; next != all.end() && next->carrier.if_mhz < if_mhz + kWidestHalf; ++next) {
        // What an LNB for the other kind of polarisation receives comes in either state.
        if (loss > 0 && next->carrier.loss > 0) continue;
        const double share = next->share(if_mhz, drift);
        if (share < kLeastShare) continue;
        const double edge = std::min(
            kMostOfEdge, 4.343 * std::abs(next->slope(if_mhz, drift)) / share * drift_spread_);
        found.push_back({&*next, share, loss, kSpread * kSpread + edge * edge});
    }
}

std::vector<Front::Ray> Front::rays(int state, double if_mhz, double drift) const {
    std::vector<Ray> found;
    add_rays(found, state, if_mhz, drift, 0);
    add_rays(found, state % 2 == 0 ? state + 1 : state - 1, if_mhz, drift, kCrossPolarDb);
    return found;
}

std::vector<Front::Heard> Front::heard(const std::vector<Ray>& rays, const Place& place,
                                       const Strength& strength, Own own) const {
    std::vector<Heard> found;
    for (const Ray& ray : rays) {
        const Carrier& carrier = ray.emitter->carrier;
        const bool is_other = kind_ == Kind::unlisted || ray.emitter->candidate != candidate_;
        const double higher = strength.alike ? 1 : kUsualRate / carrier.rate;
        const double loss =
            ray.emitter->loss(place.east) + ray.loss - (is_other ? strength.others : 0);
        if (loss > kFaintDb) continue;
        const Part part{.power = static_cast<float>(ray.share * higher * ratio(-loss)),
                        .chance = static_cast<float>(ray.emitter->chance),
                        .variance = static_cast<float>(ray.variance)};
        found.push_back({part, ray.emitter, ray.share});
    }
    if (own.chance > 0) {
        const double spread = strength.alike ? kSpread : kNarrowSpread;
        found.push_back({{.power = static_cast<float>(own.power),
                          .chance = static_cast<float>((1 - kEdges) * own.chance),
                          .variance = static_cast<float>(spread * spread)},
                         nullptr});
    }
    std::ranges::stable_sort(found, [](auto& a, auto& b) { return a.part.power > b.part.power; });
    return found;
}

/// Gives part `k` its odds, and notes which of the first it cannot be there with.
void Front::part_from_rivals(std::vector<Heard>& heard, std::size_t k) {
    Part& part = heard[k].part;
    const Emitter* emitter = heard[k].emitter;
    float inside = part.chance;
    const bool alone = emitter == nullptr || !emitter->rivalled;
    for (std::size_t other = 0; !alone && other < std::min(heard.size(), kPartsHeld); ++other) {
        const Emitter* rival = heard[other].emitter;
        if (other == k || rival == nullptr || rival->candidate != emitter->candidate ||
            !exclude(rival->carrier, emitter->carrier))
            continue;
        inside += heard[other].part.chance;
        part.excluded |= 1U << other;
    }
    // Where none of the rivals is there, nothing is.
    part.odds = part.chance / std::max(kLeastDark, 1 - inside);
}

std::vector<Front::Heard> Front::parts(const std::vector<Ray>& rays, const Setting& setting,
                                       Own own) const {
    std::vector<Heard> found =
        heard(rays, places_[setting.place], strengths_[setting.strength], own);
    for (std::size_t k = 0; k < found.size(); ++k) part_from_rivals(found, k);
    return found;
}

Front::Chances Front::unlisted_near(int state, double if_mhz, const Place& place) const {
    Chances chances{};
    for (std::size_t k = 0; k < place.near.size(); ++k)
        chances[k] = static_cast<float>(arc_.unlisted(place.near[k].candidate, state, if_mhz));
    return chances;
}

Mixture Front::mixture(const std::vector<Heard>& parts, const Cell& cell, const Chances& unlisted,
                       double usual) const {
    std::vector<Part>& scaled = scaled_;
    scaled.clear();
    for (const Heard& heard : parts) {
        scaled.push_back(heard.part);
        scaled.back().power *= on_axis_[cell.cn];
    }
    Stray stray;
    stray.narrow = strengths_[cell.setting.strength].alike ? 0 : kNarrowHigher;
    const std::size_t first = (cell.setting.place * cns_.size() + cell.cn) * Stray::kMost;
    for (std::size_t k = 0; k < Stray::kMost; ++k)
        stray.sources[k] = {unlisted[k], near_db_[first + k]};
    if (usual > 0)
        stray.sources.back() = {static_cast<float>(kEdges * usual),
                                own_db_[cell.setting.occupied * cns_.size() + cell.cn]};
    return {scaled, kCrossPolar * on_axis_[cell.cn], stray};
}

Mixture Front::mixture_at(const Cell& cell, int state, double if_mhz,
                          std::vector<Heard>* made_of) const {
    const Setting& setting = cell.setting;
    const Own lit = own(state, if_mhz, occupied_[setting.occupied]);
    const std::vector<Heard> on_axis =
        parts(rays(state, if_mhz, drifts_[setting.drift]), setting, lit);
    if (made_of != nullptr) *made_of = on_axis;
    return mixture(on_axis, cell, unlisted_near(state, if_mhz, places_[setting.place]), lit.chance);
}

/// The chance that what no candidate is has power there: as much as its state of the LNB shows, and
/// a little where most satellites have their own.
Front::Own Front::own(int state, double if_mhz, const Unlisted& unlisted) const {
    if (kind_ == Kind::listed) return {};
    const double shown = filled_[static_cast<std::size_t>(state)];
    const double here =
        (1 - kBySatellites) * shown + kBySatellites * arc_.usual_power(state, if_mhz);
    return {std::min(kMostFilled, here * unlisted.fills), ratio(-unlisted.loss)};
}

void Front::take(const Height& height) {
    const auto above = static_cast<float>(height.db);
    std::vector<Ray> near;
    for (auto cell = cells_.begin(); cell != cells_.end();) {
        const Setting setting = cell->setting;
        if (cell == cells_.begin() || setting.drift != std::prev(cell)->setting.drift)
            near = rays(height.state, height.if_mhz, drifts_[setting.drift]);
        const Chances unlisted = unlisted_near(height.state, height.if_mhz, places_[setting.place]);
        const Own lit = own(height.state, height.if_mhz, occupied_[setting.occupied]);
        const std::vector<Heard> on_axis = parts(near, setting, lit);
        for (; cell != cells_.end() && cell->setting == setting; ++cell)
            cell->log += mixture(on_axis, *cell, unlisted, lit.chance).log_density(above);
    }
}

/// What has become hopeless is not reckoned any further.
void Front::drop_cells() {
    find_most();
    if (cells_.empty()) return;
    const float least = cells_[most_].log - kDropped;
    std::erase_if(cells_, [&](const Cell& cell) { return cell.log < least; });
    find_most();
}

void Front::find_most() {
    const auto most =
        std::ranges::max_element(cells_, {}, [](const Cell& cell) { return cell.log; });
    most_ = static_cast<std::size_t>(std::distance(cells_.begin(), most));
}

double Front::lock_density(const Cell& cell, const LockTry& trial) const {
    const double drift = drifts_[cell.setting.drift];
    std::vector<Heard> on_axis;
    const Mixture held = mixture_at(cell, trial.state, trial.if_mhz, &on_axis);
    const auto shares = held.shares(static_cast<float>(trial.above));
    const double carriers = std::max(0.01, ratio(trial.above) - 1);
    double locked = 0;
    double known = 0;
    for (unsigned which = 0; which < 1U << held.parts(); ++which) {
        known += shares[which];
        int strongest = -1;
        double sum = 0;
        for (int k = held.parts() - 1; k >= 0; --k)
            if ((which >> k & 1U) != 0) {
                strongest = k;
                sum += on_axis[static_cast<std::size_t>(k)].part.power;
            }
        if (strongest < 0) {
            locked += shares[which] * kLockOfNothing;
            continue;
        }
        const Heard& best = on_axis[static_cast<std::size_t>(strongest)];
        const Emitter* emitter = best.emitter;
        if (emitter == nullptr) {
            locked += shares[which] * kLockOfUnlisted;
            continue;
        }
        const double capture = captured(emitter->carrier, trial, drift);
        const double own = carriers * best.part.power / sum;
        // The demodulator's filter is as wide as the carrier.
        const double filled = std::min(1.0, best.share);
        const double cn = 10 * std::log10(own / filled / (1 + carriers - own));
        locked += shares[which] *
                  (kLockOfNothing + capture * kMostLock * logistic((cn - kNeeded) / kNeededSpread) *
                                        offset_density(trial, emitter->carrier, drift));
    }
    locked += std::max(0.0, 1 - known) * kLockOfUnlisted;
    return trial.locked ? std::max(locked, 1e-4) : std::max(1 - locked, 1 - kMostLock);
}

void Front::take(const LockTry& trial) {
    for (Cell& cell : cells_) cell.log += static_cast<float>(std::log(lock_density(cell, trial)));
}

/// The highest first, as they part what is possible from what is not the soonest.
void Front::take_new(const std::vector<Height>& heights, std::size_t end) {
    if (heights_ >= end) return;
    std::vector<Height> fresh(heights.begin() + static_cast<std::ptrdiff_t>(heights_),
                              heights.begin() + static_cast<std::ptrdiff_t>(end));
    std::ranges::stable_sort(fresh, [](const Height& a, const Height& b) { return a.db > b.db; });
    for (const Height& height : fresh) {
        take(height);
        ++heights_;
        if (heights_ < kDroppedSoon || heights_ % kDropEach == 0) drop_cells();
    }
}

void Front::catch_up(const Evidence& evidence, std::size_t most) {
    filled_ = evidence.filled;
    if (heights_ == evidence.heights.size() && locks_ == evidence.locks.size()) return;
    take_new(evidence.heights, std::min(most, evidence.heights.size()));
    for (; locks_ < evidence.locks.size(); ++locks_) take(evidence.locks[locks_]);
    find_most();
}

double Front::log_sum(bool named) const {
    constexpr double kNever = -1e9;
    double most = kNever;
    for (const Cell& cell : cells_)
        if (places_[cell.setting.place].named == named)
            most = std::max<double>(most, kTrust * cell.log);
    if (most == kNever) return kNever;
    double sum = 0;
    for (const Cell& cell : cells_)
        if (places_[cell.setting.place].named == named) sum += std::exp(kTrust * cell.log - most);
    return most + std::log(sum) + log_cell_;
}

Front::Best Front::best() const {
    if (cells_.empty()) return {.log = -1e9};
    const Cell& most = cells_[most_];
    const Strength& strength = strengths_[most.setting.strength];
    return {drifts_[most.setting.drift],
            places_[most.setting.place].east,
            cns_[most.cn],
            most.log,
            strength.alike,
            strength.others};
}

Mixture::Mean Front::expect(int state, double if_mhz) const {
    return mixture_at(cells_[most_], state, if_mhz).mean();
}

double Front::fit(const Evidence& evidence) const {
    double sum = 0;
    double variance = 1;
    for (const Height& height : evidence.heights) {
        const Mixture held = mixture_at(cells_[most_], height.state, height.if_mhz);
        const Mixture::Mean usual_log = held.usual_log();
        sum += held.log_density(static_cast<float>(height.db)) - usual_log.db;
        variance += usual_log.variance;
    }
    return sum / std::sqrt(variance);
}

double Front::lock_chance(const LockTry& trial) const {
    LockTry heard = trial;
    heard.locked = true;
    heard.offset.reset();
    return lock_density(cells_[most_], heard);
}

}  // namespace m47::identify
