// SPDX-License-Identifier: GPL-3.0-or-later
#include "belief.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace m47::identify {
namespace {

constexpr double kNoneAtFirst = 0.05;
constexpr double kBesideAtFirst = 0.05;
constexpr double kNothingAtFirst = 0.1;
/// So many candidates get a fine grid: the best so far, and the neighbours of the first of them.
constexpr std::size_t kRefined = 16;
constexpr std::size_t kWithNeighbours = 2;
constexpr std::size_t kFinest = 3;
constexpr int kMostMoves = 3;
/// Candidates that fit so badly are not looked at closer.
constexpr double kHopeless = 1e-12;
constexpr std::size_t kNeighboursRefined = 4;
/// and those that fit so much worse are given up, whatever is still to come.
constexpr double kGivenUp = 40;
constexpr std::size_t kLevelsAtOnce = 22;
/// Where no satellite is, there is seldom a level above the noise.
constexpr double kStray = 0.001;
constexpr double kStrayRange = 25;  // dB
constexpr double kScatter = 0.3;    // dB
constexpr double kNever = -1e9;

double log_of_nothing(double above) {
    const double noise = std::exp(-above * above / (2 * kScatter * kScatter)) / (kScatter * 2.5066);
    return std::log((1 - kStray) * noise + kStray / kStrayRange);
}

double log_of_sum(const std::vector<double>& logs) {
    const double most = *std::ranges::max_element(logs);
    double sum = 0;
    for (const double log : logs) sum += std::exp(log - most);
    return most + std::log(sum);
}

double log_of_all(const std::vector<FinestGrid>& grids, double (Front::*log)() const) {
    std::vector<double> logs;
    logs.reserve(grids.size());
    for (const FinestGrid& grid : grids) logs.push_back((grid.front.*log)());
    return log_of_sum(logs);
}

const Front& most_probable(const std::vector<FinestGrid>& grids) {
    return std::ranges::max_element(grids, {},
                                    [](const FinestGrid& g) { return g.front.best().log; })
        ->front;
}

/// Moves the grid on while what is most probable stands at its end.
void catch_up(const Arc& arc, const Evidence& evidence, Front& front) {
    front.catch_up(evidence);
    for (int moved = 0; moved < kMostMoves && front.is_at_its_end(); ++moved) {
        front = Front(arc, front.candidate(), front.kind(), front.best());
        front.catch_up(evidence);
    }
}

/// The few best of `fine`.
std::vector<std::size_t> worth_the_finest(const std::map<std::size_t, Front>& fine) {
    std::vector<std::pair<double, std::size_t>> best;
    best.reserve(fine.size());
    for (const auto& [which, front] : fine)
        if (!front.holds_nothing()) best.emplace_back(-front.best().log, which);
    std::ranges::sort(best);
    if (best.size() > kFinest) best.resize(kFinest);
    std::vector<std::size_t> found;
    found.reserve(best.size());
    for (const auto& [log, which] : best) found.push_back(which);
    return found;
}

/// Where the finest grids of one are to be: a coarser grid takes neighbours of another strength
/// for a dish that looks a little farther from the candidate, or the other way round.
std::vector<Front::Best> middles_of(const Front& fine) {
    std::vector<Front::Best> middles{fine.best()};
    const std::optional<Front::Best> equals = fine.best_of_equals();
    if (middles[0].others != 0 && equals) middles.push_back(*equals);
    return middles;
}

/// The few best of `fine` on the finest grid, around what is most probable by now.
void add_finest(const Arc& arc, const std::map<std::size_t, Front>& fine, const Evidence& evidence,
                Finest& finest) {
    Finest kept;
    for (const std::size_t which : worth_the_finest(fine)) {
        const Front& front = fine.at(which);
        for (const Front::Best& middle : middles_of(front)) {
            std::vector<FinestGrid>& before = finest[which];
            const auto same = std::ranges::find_if(
                before, [&](const FinestGrid& one) { return one.start.is_at(middle); });
            if (same != before.end())
                kept[which].push_back(std::move(*same));
            else
                kept[which].push_back({middle, Front(arc, which, front.kind(), middle)});
            catch_up(arc, evidence, kept[which].back().front);
        }
    }
    finest = std::move(kept);
}

}  // namespace

Belief::Belief(const Arc& arc) : arc_(arc) {
    for (std::size_t k = 0; k < arc.size(); ++k)
        coarse_.emplace_back(arc, k, Front::Kind::listed, Front::Grid::coarse);
    given_up_.assign(arc.size(), false);
    settle();
}

bool Belief::is_given_up(std::size_t candidate) const {
    return given_up_[candidate] && !fine_.contains(candidate);
}

const Front& Belief::front(std::size_t candidate) const {
    const auto finest = finest_.find(candidate);
    if (finest != finest_.end()) return most_probable(finest->second);
    const auto fine = fine_.find(candidate);
    return fine != fine_.end() ? fine->second : coarse_[candidate];
}

const Front& Belief::unlisted(std::size_t candidate) const {
    const auto finest = finest_unlisted_.find(candidate);
    return finest != finest_unlisted_.end() ? most_probable(finest->second)
                                            : unlisted_.at(candidate);
}

double Belief::log_named(std::size_t candidate) const {
    const auto finest = finest_.find(candidate);
    return finest != finest_.end() ? log_of_all(finest->second, &Front::log_named)
                                   : front(candidate).log_named();
}

double Belief::log_beside(std::size_t candidate) const {
    const auto finest = finest_.find(candidate);
    return finest != finest_.end() ? log_of_all(finest->second, &Front::log_beside)
                                   : front(candidate).log_beside();
}

double Belief::log_unlisted(std::size_t candidate) const {
    const auto finest = finest_unlisted_.find(candidate);
    return finest != finest_unlisted_.end() ? log_of_all(finest->second, &Front::log_beside)
                                            : unlisted_.at(candidate).log_beside();
}

void Belief::weigh_nothing(const Evidence& evidence) {
    for (; nothing_seen_ < evidence.heights.size(); ++nothing_seen_)
        log_nothing_ += log_of_nothing(evidence.heights[nothing_seen_].db);
}

/// The best candidates and the neighbours of the first of them.
std::vector<std::size_t> Belief::worth_refining() const {
    std::vector<std::size_t> wanted;
    double least = 0;
    for (const std::size_t which : order_) {
        if (which >= arc_.size()) continue;
        if (wanted.empty()) least = chances_[which] * kHopeless;
        if (chances_[which] < least || wanted.size() >= kRefined) break;
        const bool with_neighbours = wanted.size() < kWithNeighbours;
        wanted.push_back(which);
        if (!with_neighbours) continue;
        const std::vector<std::size_t>& others = arc_.neighbours(which);
        for (std::size_t k = 0; k < std::min(kNeighboursRefined, others.size()); ++k)
            if (wanted.size() < kRefined) wanted.push_back(others[k]);
    }
    return wanted;
}

/// A candidate whose chances have gone falls back to its coarse grid.
void Belief::drop_hopeless(const std::vector<std::size_t>& wanted) {
    const double least = wanted.empty() ? 0 : chances_[wanted.front()] * kHopeless;
    const auto hopeless = [&](const auto& entry) {
        return chances_[entry.first] < least && std::ranges::count(wanted, entry.first) == 0;
    };
    std::erase_if(fine_, hopeless);
    std::erase_if(unlisted_, hopeless);
}

void Belief::refine(const Evidence& evidence) {
    const std::vector<std::size_t> wanted = worth_refining();
    for (const std::size_t which : wanted) {
        if (fine_.contains(which)) continue;
        fine_.emplace(which,
                      Front(arc_, which, Front::Kind::listed, Front::Grid::fine, &coarse_[which]));
        unlisted_.emplace(which, Front(arc_, which, Front::Kind::unlisted, Front::Grid::fine));
    }
    drop_hopeless(wanted);
    for (auto& [which, front] : fine_) front.catch_up(evidence);
    for (auto& [which, front] : unlisted_) front.catch_up(evidence);
}

void Belief::refine_more(const Evidence& evidence) {
    add_finest(arc_, fine_, evidence, finest_);
    add_finest(arc_, unlisted_, evidence, finest_unlisted_);
}

/// Step by step, as most of the candidates are far from it after a few levels already.
void Belief::catch_up_coarse(const Evidence& evidence) {
    const std::size_t all = evidence.heights.size();
    for (std::size_t seen = nothing_seen_;;) {
        seen = std::min(all, seen + kLevelsAtOnce);
        double best = kNever;
        for (std::size_t k = 0; k < coarse_.size(); ++k) {
            if (given_up_[k]) continue;
            coarse_[k].catch_up(evidence, seen);
            best = std::max(best, coarse_[k].best().log);
        }
        give_up_far(best - kGivenUp / kTrust);
        if (seen == all) return;
    }
}

void Belief::give_up_far(double least) {
    for (std::size_t k = 0; k < coarse_.size(); ++k)
        if (coarse_[k].best().log < least) given_up_[k] = true;
}

void Belief::update(const Evidence& evidence) {
    catch_up_coarse(evidence);
    for (auto* fronts : {&fine_, &unlisted_})
        for (auto& [which, front] : *fronts) front.catch_up(evidence);
    for (auto* fronts : {&finest_, &finest_unlisted_})
        for (auto& [which, ones] : *fronts)
            for (FinestGrid& one : ones) catch_up(arc_, evidence, one.front);
    weigh_nothing(evidence);
    settle();
    refine(evidence);
    refine_more(evidence);
    settle();
}

/// The logarithm of what speaks for none of the candidates; `best` is that of the best of them.
double Belief::log_none(double best) const {
    const double places = std::log(static_cast<double>(arc_.size() + 1));
    std::vector<double> logs;
    for (std::size_t k = 0; k < arc_.size(); ++k)
        if (!is_given_up(k)) logs.push_back(log_beside(k) + std::log(kBesideAtFirst) - places);
    for (const auto& [which, front] : unlisted_)
        logs.push_back(log_unlisted(which) + std::log(kNoneAtFirst) - places);
    // Before anything is known of them, they are as good as the best candidate.
    if (unlisted_.empty()) logs.push_back(std::log(kNoneAtFirst) + best);
    return log_of_sum(logs);
}

void Belief::settle() {
    const double each = std::log((1 - kNoneAtFirst - kBesideAtFirst - kNothingAtFirst) /
                                 static_cast<double>(std::max<std::size_t>(1, arc_.size())));
    std::vector<double> logs(arc_.size() + 2, kNever);
    for (std::size_t k = 0; k < arc_.size(); ++k)
        if (!is_given_up(k)) logs[k] = log_named(k) + each;
    logs[arc_.size()] = log_none(*std::ranges::max_element(logs));
    logs[arc_.size() + 1] = kTrust * log_nothing_ + std::log(kNothingAtFirst);
    const double top = *std::ranges::max_element(logs);
    chances_.assign(logs.size(), 0);
    double all = 0;
    for (std::size_t k = 0; k < logs.size(); ++k) all += chances_[k] = std::exp(logs[k] - top);
    for (double& chance : chances_) chance /= all;
    order_.resize(logs.size());
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::ranges::stable_sort(order_,
                             [&](std::size_t a, std::size_t b) { return logs[a] > logs[b]; });
}

Ideas Belief::ideas() const {
    Ideas ideas;
    double most = kNever;
    const auto add = [&](const Front& front) {
        const double log = kTrust * front.best().log;
        most = std::max(most, log);
        ideas.emplace_back(&front, log);
    };
    for (const auto& [which, coarser] : fine_) add(front(which));
    for (const auto& [which, coarser] : unlisted_) add(unlisted(which));
    for (auto& [front, weight] : ideas) weight = std::exp(weight - most);
    std::erase_if(ideas, [](const auto& idea) { return idea.second < 1e-9; });
    return ideas;
}

}  // namespace m47::identify
