// SPDX-License-Identifier: GPL-3.0-or-later
#include "front.h"

#include <algorithm>
#include <cmath>

#include "decibel.h"

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
/// The edge of a carrier makes a level uncertain by at most this, dB.
constexpr double kMostOfEdge = 5;
/// A cell is left out for good where it is so much less probable than the most probable one.
constexpr float kDropped = 30;
constexpr std::size_t kDropEach = 4;
constexpr std::size_t kDroppedSoon = 24;
/// A carrier that fills less of the filter is not counted.
constexpr double kLeastShare = 0.01;
constexpr double kFaintDb = 26;
constexpr std::size_t kPartsHeld = Mixture::kMost;
constexpr double kWidestHalf = 35;  // MHz: half of a carrier, drift and filter
/// The chance that nothing is where several that exclude one another are listed is at least this.
constexpr float kLeastDark = 0.1F;
/// Of what no candidate is so much reaches into the filter with its edge alone.
constexpr double kEdges = 0.3;
constexpr double kBySatellites = 0.25;
constexpr double kMostFilled = 0.95;

}  // namespace

void Front::add_rays(std::vector<Ray>& found, int state, double if_mhz, double drift,
                     double loss) const {
    const std::vector<Emitter>& all = arc_->around(candidate_)[static_cast<std::size_t>(state)];
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
        chances[k] = static_cast<float>(arc_->unlisted(place.near[k].candidate, state, if_mhz));
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
        (1 - kBySatellites) * shown + kBySatellites * arc_->usual_power(state, if_mhz);
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

Front::Best Front::best_of(const Cell& cell) const {
    const Strength& strength = strengths_[cell.setting.strength];
    return {drifts_[cell.setting.drift],
            places_[cell.setting.place].east,
            cns_[cell.cn],
            cell.log,
            strength.alike,
            strength.others};
}

Front::Best Front::best() const {
    return cells_.empty() ? Best{.log = -1e9} : best_of(cells_[most_]);
}

std::optional<Front::Best> Front::best_of_equals() const {
    const Cell* most = nullptr;
    for (const Cell& cell : cells_)
        if (strengths_[cell.setting.strength].others == 0 && (!most || cell.log > most->log))
            most = &cell;
    return most ? std::optional(best_of(*most)) : std::nullopt;
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

bool Front::is_own(const std::vector<Heard>& heard, unsigned which) const {
    for (std::size_t k = 0; k < std::min(heard.size(), kPartsHeld); ++k)
        if ((which >> k & 1U) != 0 && heard[k].emitter != nullptr &&
            heard[k].emitter->candidate == candidate_)
            return true;
    return false;
}

Front::Account Front::account(const Evidence& evidence) const {
    Account account;
    for (const Height& height : evidence.heights) {
        std::vector<Heard> made_of;
        const Mixture held = mixture_at(cells_[most_], height.state, height.if_mhz, &made_of);
        const auto shares = held.shares(static_cast<float>(height.db));
        double known = 0;
        double usual_known = 0;
        for (unsigned which = 0; which < 1U << held.parts(); ++which) {
            known += shares[which];
            usual_known += held.usual_share(which);
            if (!is_own(made_of, which)) continue;
            account.own += shares[which];
            account.usual_own += held.usual_share(which);
        }
        account.strays += 1 - known;
        account.usual_strays += 1 - usual_known;
    }
    return account;
}

}  // namespace m47::identify
