// SPDX-License-Identifier: GPL-3.0-or-later
#include "identifier.h"

#include <algorithm>
#include <cmath>

namespace m47::identify {
namespace {

/// The scan: so many levels in each state of the LNB, spread over the band.
constexpr int kScanOfAState = 22;
/// Levels that are chosen come in rounds, so that the LNB is switched less.
constexpr std::size_t kRound = 10;
constexpr int kFewestRounds = 3;
constexpr int kMostRounds = 22;
/// Which plan it may be is clear soon, and which one it is tell the locks.
constexpr int kRoundsOfPlans = 8;
constexpr double kClear = 0.998;
/// Two levels nearer than this say much the same, MHz.
constexpr double kNear = 12;
/// A level for a lock has to stand on its carrier.
constexpr double kSamePlace = 1.5;
constexpr std::size_t kProofLevels = 16;
constexpr double kWorthALock = 0.02;
/// That it is none of these where levels name one but nothing of it locked.
constexpr double kUnproven = 0.7;
/// A name is given where it is at least this probable that a candidate is what the dish looks at.
constexpr double kLeastListed = 0.5;
/// The most that a name is worth without any lock.
constexpr double kByLevels = 0.9;
constexpr int kEnoughToLock = 5;
/// A satellite so weak is hard to tell from what shows by chance, dB.
constexpr double kFaintCn = 6.5;
/// What fits worse than this, in standard deviations, is not what the dish looks at.
constexpr double kWorstFit = -5.5;
/// Places that nobody lists are asked too, so far apart: something there speaks for none of these.
constexpr double kGapStep = 20;  // MHz
/// A level this much above the noise, dB, is one of a carrier.
constexpr double kHigh = 2;
/// and one this much above it nothing but a carrier can be.
constexpr double kCarrier = 4;
/// Nobody is named where so much more comes from what nobody lists, or less from what the candidate
/// lists, in standard deviations;
constexpr double kMostOutOfPlace = 6.5;
/// where nothing locked, by this much, or where less than this part of the candidate's own shows.
constexpr double kMostOutOfPlaceUnlocked = 3;
constexpr double kLeastOwn = 0.5;
/// What a lock counts where its level has to be taken first.
constexpr double kWithoutLevel = 0.7;

/// By how many standard deviations more than usual comes from what nobody lists.
double strays_of(const Front::Account& account) {
    return (account.strays - account.usual_strays) / std::sqrt(account.usual_strays + 2);
}

double worth_of(const Ideas& ideas, int state, double if_mhz) {
    double weights = 0;
    double mean = 0;
    double within = 0;
    std::vector<std::pair<double, Mixture::Mean>> expected;
    for (const auto& [front, weight] : ideas) {
        // What is less probable so far still has a say.
        const double say = std::sqrt(weight) + 1e-3;
        const Mixture::Mean one = front->expect(state, if_mhz);
        expected.emplace_back(say, one);
        weights += say;
        mean += say * one.db;
        within += say * one.variance;
    }
    mean /= weights;
    double between = 0;
    for (const auto& [say, one] : expected) between += say * (one.db - mean) * (one.db - mean);
    return between / within;
}

}  // namespace

Identifier::Identifier(const Arc& arc, int states) : arc_(arc), states_(states), belief_(arc) {
    plan_scan();
}

void Identifier::plan_scan() {
    const double step = (kHighestIf - kLowestIf) / kScanOfAState;
    for (int state = 0; state < states_; ++state)
        for (int k = 0; k < kScanOfAState; ++k) {
            const double part = k + 0.5 + (state % 2 == 0 ? -0.17 : 0.17);
            planned_.push_back({Question::Kind::level, state, std::round(kLowestIf + part * step)});
        }
}

bool Identifier::is_asked(int state, double if_mhz, double within) const {
    const auto near = [&](const Question& question) {
        return question.kind == Question::Kind::level && question.state == state &&
               std::abs(question.if_mhz - if_mhz) < within;
    };
    return std::ranges::any_of(asked_, near) || std::ranges::any_of(planned_, near);
}

double Identifier::filled_in(int state) const {
    double high = 0.5;
    double all = 1;
    for (const Level& level : levels_) {
        if (level.state != state) continue;
        ++all;
        high += floor_.above(level) > kHigh ? 1 : 0;
    }
    return high / all;
}

void Identifier::note_levels() {
    if (!scanned_) {
        floor_ = noise_floor_of(levels_);
        scanned_ = true;
        for (int state = 0; state < states_; ++state)
            evidence_.filled[static_cast<std::size_t>(state)] = filled_in(state);
    }
    for (std::size_t k = evidence_.heights.size(); k < levels_.size(); ++k)
        evidence_.heights.push_back(
            {levels_[k].state, levels_[k].if_mhz, floor_.above(levels_[k])});
}

void Identifier::ask_by_state(std::vector<Question> questions) {
    std::ranges::stable_sort(questions, [](const Question& a, const Question& b) {
        return a.state != b.state ? a.state < b.state : a.if_mhz < b.if_mhz;
    });
    planned_.insert(planned_.end(), questions.begin(), questions.end());
}

void Identifier::add_worth(Worths& worths, const Ideas& ideas, int state, double if_mhz) const {
    if (is_asked(state, if_mhz, kNear)) return;
    worths.push_back({worth_of(ideas, state, if_mhz), {Question::Kind::level, state, if_mhz}});
}

/// The levels that may be asked, what tells most first.
Identifier::Worths Identifier::worths_of_levels() const {
    const Ideas ideas = belief_.ideas();
    Worths found;
    std::vector<std::size_t> seen;
    for (const auto& [front, weight] : ideas) {
        if (std::ranges::count(seen, front->candidate()) > 0) continue;
        seen.push_back(front->candidate());
        const double drift = front->best().drift;
        for (const std::vector<Emitter>& state : arc_.around(front->candidate()))
            for (const Emitter& emitter : state)
                add_worth(
                    found, ideas, emitter.carrier.state,
                    std::round(std::clamp(emitter.carrier.if_mhz + drift, kLowestIf, kHighestIf)));
    }
    const int gaps = static_cast<int>((kHighestIf - kLowestIf) / kGapStep);
    for (int state = 0; state < states_; ++state)
        for (int k = 0; k < gaps; ++k)
            add_worth(found, ideas, state, kLowestIf + (k + 0.5) * kGapStep);
    std::ranges::stable_sort(found, [](const auto& a, const auto& b) { return a.first > b.first; });
    return found;
}

void Identifier::plan_levels() {
    std::vector<Question> chosen;
    for (const auto& [worth, question] : worths_of_levels()) {
        const bool near = std::ranges::any_of(chosen, [&, &question = question](const auto& other) {
            return other.state == question.state &&
                   std::abs(other.if_mhz - question.if_mhz) < kNear;
        });
        if (!near) chosen.push_back(question);
        if (chosen.size() == kRound) break;
    }
    ask_by_state(chosen);
}

std::optional<double> Identifier::above_at(int state, double if_mhz) const {
    std::optional<double> above;
    for (const Height& height : evidence_.heights)
        if (height.state == state && std::abs(height.if_mhz - if_mhz) < kSamePlace)
            above = height.db;
    return above;
}

double Identifier::worth_of_lock(const LockTry& trial, std::size_t candidate,
                                 const Ideas& ideas) const {
    double weights = 0;
    double mean = 0;
    double squares = 0;
    double others = 0;
    double of_others = 0;
    for (const auto& [front, weight] : ideas) {
        const double say = weight + 1e-3;
        const double chance = front->lock_chance(trial);
        weights += say;
        mean += say * chance;
        squares += say * chance * chance;
        if (front->candidate() == candidate && front->kind() == Front::Kind::listed) continue;
        others += say;
        of_others += say * chance;
    }
    mean /= weights;
    const double told = (squares / weights - mean * mean) / (mean * (1 - mean));
    const double own = belief_.front(candidate).lock_chance(trial);
    const double proof = own * (1.2 - (others > 0 ? of_others / others : 0));
    return told + proof * share(candidate);
}

std::vector<std::size_t> Identifier::probable() const {
    std::vector<std::size_t> found;
    for (const std::size_t which : belief_.order())
        if (which < arc_.size() && (found.empty() || share(which) > kWorthALock))
            found.push_back(which);
    return found;
}

bool Identifier::lock_tried(const Carrier& carrier, double if_mhz) const {
    return std::ranges::any_of(asked_, [&](const Question& other) {
        return other.kind == Question::Kind::lock && other.state == carrier.state &&
               std::abs(other.if_mhz - if_mhz) < carrier.rate / 2;
    });
}

bool Identifier::plan_lock() {
    const Ideas ideas = belief_.ideas();
    double most = 0;
    Question chosen;
    for (const std::size_t which : probable()) {
        const Front& front = belief_.front(which);
        const double drift = front.best().drift;
        for (const Carrier& carrier : arc_.candidates()[which].carriers) {
            const double at = std::round((carrier.if_mhz + drift) * 10) / 10;
            if (!carrier.lockable || at < kLowestIf || at > kHighestIf || lock_tried(carrier, at))
                continue;
            const std::optional<double> above = above_at(carrier.state, at);
            // A level that was asked for and did not come is not asked for again.
            if (!above && is_asked(carrier.state, at, kSamePlace)) continue;
            const LockTry trial{carrier.state, at, carrier.rate,
                                above ? *above : front.expect(carrier.state, at).db};
            const double worth = worth_of_lock(trial, which, ideas) * (above ? 1 : kWithoutLevel);
            if (worth <= most) continue;
            most = worth;
            chosen = {above ? Question::Kind::lock : Question::Kind::level, carrier.state, at,
                      above ? carrier.rate : 0};
        }
    }
    if (most < kWorthALock) return false;
    planned_.push_back(chosen);
    if (chosen.kind == Question::Kind::lock) ++tried_locks_;
    return true;
}

/// Levels on the transponders of the best candidate that a lock may be asked of: those that stand
/// highest will lock.
void Identifier::plan_proof() {
    proof_planned_ = true;
    const std::vector<std::size_t> found = probable();
    if (found.empty()) return;
    const Front& front = belief_.front(found.front());
    const double drift = front.best().drift;
    std::vector<std::pair<double, Question>> places;
    for (const Carrier& carrier : arc_.candidates()[found.front()].carriers) {
        const double at = std::round((carrier.if_mhz + drift) * 10) / 10;
        if (!carrier.lockable || at < kLowestIf || at > kHighestIf) continue;
        if (is_asked(carrier.state, at, kSamePlace)) continue;
        const LockTry trial{carrier.state, at, carrier.rate, front.expect(carrier.state, at).db};
        places.push_back({front.lock_chance(trial), {Question::Kind::level, carrier.state, at}});
    }
    std::ranges::stable_sort(places,
                             [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<Question> chosen;
    for (const auto& [chance, question] : places)
        if (chosen.size() < kProofLevels) chosen.push_back(question);
    ask_by_state(chosen);
}

/// True where a round of levels is still worth it.
bool Identifier::wants_levels(double certainty) const {
    if (among_plans()) return batches_ < kRoundsOfPlans;
    if (batches_ >= kMostRounds) return false;
    if (certainty <= kClear || batches_ < kFewestRounds) return true;
    // What nothing has proven is asked of to the end.
    return tried_locks_ >= most_locks() && belief_.best() < arc_.size() &&
           locks_of(belief_.best()) == 0;
}

void Identifier::plan() {
    note_levels();
    belief_.update(evidence_);
    const double certainty = belief_.chances()[belief_.best()];
    if (belief_.best() == belief_.nothing() && certainty > kClear &&
        batches_ >= (among_plans() ? kRoundsOfPlans : 1)) {
        done_ = true;
        return;
    }
    if (wants_levels(certainty)) {
        ++batches_;
        plan_levels();
        if (!planned_.empty()) return;
    }
    if (is_settled()) {
        done_ = true;
        return;
    }
    if (!proof_planned_) plan_proof();
    if (!planned_.empty() || plan_lock()) return;
    // Nothing to lock: levels have to do.
    tried_locks_ = most_locks();
    if (wants_levels(certainty)) {
        ++batches_;
        plan_levels();
    }
    done_ = planned_.empty();
}

std::optional<Question> Identifier::next_question() {
    if (planned_.empty() && !done_) plan();
    if (planned_.empty()) return std::nullopt;
    return planned_.front();
}

void Identifier::take(const Question& question, const Answer& answer) {
    if (!planned_.empty()) planned_.pop_front();
    asked_.push_back(question);
    if (question.kind == Question::Kind::level && answer.db)
        levels_.push_back({question.state, question.if_mhz, *answer.db});
    if (question.kind == Question::Kind::lock && answer.locked)
        evidence_.locks.push_back({question.state, question.if_mhz, question.rate,
                                   above_at(question.state, question.if_mhz).value_or(0),
                                   *answer.locked, answer.offset});
}

/// True where it was tried on a transponder of the candidate.
bool Identifier::is_of(const LockTry& lock, std::size_t candidate) const {
    const double drift = belief_.front(candidate).best().drift;
    return std::ranges::any_of(arc_.candidates()[candidate].carriers, [&](const Carrier& carrier) {
        return carrier.lockable && carrier.state == lock.state &&
               std::abs(carrier.rate - lock.rate) < 0.01 * lock.rate &&
               std::abs(carrier.if_mhz + drift - lock.if_mhz) < kCapture * lock.rate + 1;
    });
}

int Identifier::locks_of(std::size_t candidate) const {
    return static_cast<int>(std::ranges::count_if(evidence_.locks, [&](const LockTry& lock) {
        return lock.locked && is_of(lock, candidate);
    }));
}

/// The chance that it is the candidate, and not something that is in no table, of a name that the
/// levels lead to. A regression over 1000 skies with their satellite among the candidates and 900
/// without it has found what these signs are worth.
double Identifier::chance_of_listed(const Verdict& verdict) const {
    constexpr double kMostOdds = 9;
    constexpr double kMostFit = 3;
    const Front& front = belief_.front(verdict.candidate);
    const double none = std::max(belief_.chances()[belief_.none()], 1e-5);
    const double odds = std::log(belief_.chances()[verdict.candidate] / none);
    const double off = arc_.distance(verdict.candidate, front.best().east) / arc_.beam();
    const double fit = std::clamp(front.fit(evidence_), kWorstFit, kMostFit);
    const double sum = 1.2 + 0.85 * std::min(odds, kMostOdds) - 9 * off + 0.26 * fit -
                       0.25 * strays_of(front.account(evidence_)) - (verdict.locks == 0 ? 1.9 : 0);
    return 1 / (1 + std::exp(-sum));
}

/// True where what was seen is not what a dish at the candidate sees.
bool Identifier::is_out_of_place(const Verdict& verdict) const {
    const Front& front = belief_.front(verdict.candidate);
    const Front::Account account = front.account(evidence_);
    const double missing = (account.usual_own - account.own) / std::sqrt(account.usual_own + 1);
    const double out_of_place = strays_of(account) + missing;
    if (front.fit(evidence_) < kWorstFit || out_of_place > kMostOutOfPlace) return true;
    // Levels alone tell less: they name nobody of whom hardly anything could lock.
    return verdict.locks == 0 &&
           (out_of_place > kMostOutOfPlaceUnlocked ||
            arc_.candidates()[verdict.candidate].lockable() < kEnoughToLock ||
            account.own < kLeastOwn * account.usual_own || front.best().cn < kFaintCn);
}

void Identifier::name_nobody(Verdict& verdict) const {
    verdict.kind = Verdict::Kind::none_of_these;
    verdict.certainty = std::max(kUnproven, belief_.chances()[belief_.none()]);
}

Verdict::Kind Identifier::kind() const {
    const std::size_t best = belief_.best();
    if (best < arc_.size()) return Verdict::Kind::candidate;
    const bool shows = std::ranges::any_of(
        evidence_.heights, [](const Height& height) { return height.db > kCarrier; });
    return best == belief_.none() || shows ? Verdict::Kind::none_of_these
                                           : Verdict::Kind::no_satellite;
}

/// The two candidates that are most probable.
void Identifier::name_two(Verdict& verdict) const {
    bool first = true;
    for (const std::size_t which : belief_.order()) {
        if (which >= arc_.size()) continue;
        if (!first) {
            verdict.runner_up = which;
            verdict.runner_up_chance = belief_.chances()[which];
            return;
        }
        verdict.candidate = which;
        first = false;
    }
}

Verdict Identifier::verdict() const {
    Verdict verdict{.kind = kind(), .certainty = belief_.chances()[belief_.best()]};
    if (arc_.size() == 0) return verdict;
    name_two(verdict);
    const Front::Best best = belief_.front(verdict.candidate).best();
    verdict.drift = best.drift;
    verdict.locks = locks_of(verdict.candidate);
    weigh_name(verdict);
    if (verdict.kind == Verdict::Kind::candidate)
        verdict.runner_up_chance *=
            part_of_others(belief_.chances()[verdict.candidate], verdict.certainty);
    return verdict;
}

/// What counts besides the levels: whether there is a name at all, and how certain it is.
void Identifier::weigh_name(Verdict& verdict) const {
    if (among_plans() && verdict.kind != Verdict::Kind::no_satellite) return name_plan(verdict);
    if (verdict.kind != Verdict::Kind::candidate) return;
    const double listed = chance_of_listed(verdict);
    if (is_out_of_place(verdict) || listed < kLeastListed) return name_nobody(verdict);
    verdict.certainty = listed * verdict.certainty / (1 - belief_.chances()[belief_.none()]);
    if (verdict.locks == 0) verdict.certainty = std::min(kByLevels, verdict.certainty);
}

}  // namespace m47::identify
