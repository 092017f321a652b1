// SPDX-License-Identifier: GPL-3.0-or-later
// When enough has locked. A table says what else is there and what does not lock, so its levels
// tell; of a plan's satellite most is unknown, and nothing but locks tells it from another one.
#include <algorithm>
#include <cmath>

#include "identifier.h"

namespace m47::identify {
namespace {

constexpr int kProof = 2;
constexpr int kMostLocks = 5;
constexpr int kMostLocksOfPlans = 10;
/// The chance that a program of a plan locks, with its satellite before the dish and with another
/// one that happens to have a transponder there.
constexpr double kLocksIfIt = 0.45;
constexpr double kLocksIfNot = 0.12;
constexpr double kSure = 0.95;
constexpr double kHopeless = 0.05;

}  // namespace

double part_of_others(double of_levels, double certainty) {
    return of_levels < 1 ? (1 - certainty) / (1 - of_levels) : 0;
}

bool Identifier::among_plans() const {
    return arc_.size() > 0 && arc_.candidates().front().is_plan;
}

int Identifier::most_locks() const {
    return among_plans() ? kMostLocksOfPlans : kMostLocks;
}

/// The chance that the dish looks at the plan's satellite and not at one without a plan, of what
/// has been tried to lock; a half before that.
double Identifier::chance_of_plan(std::size_t plan) const {
    double odds = 0;
    for (const LockTry& lock : evidence_.locks)
        if (is_of(lock, plan))
            odds += lock.locked ? std::log(kLocksIfIt / kLocksIfNot)
                                : std::log((1 - kLocksIfIt) / (1 - kLocksIfNot));
    return 1 / (1 + std::exp(-odds));
}

/// True where no further lock is needed, or none would help.
bool Identifier::is_settled() const {
    const std::vector<std::size_t> found = probable();
    if (tried_locks_ >= most_locks() || found.empty()) return true;
    const bool proven = locks_of(found.front()) >= kProof;
    if (!among_plans()) return proven && belief_.best() == found.front();
    const double chance = chance_of_plan(found.front());
    return (proven && chance >= kSure) || chance <= kHopeless;
}

/// The chance of one; of plans, if it is one of them at all, which locks have to show.
double Identifier::share(std::size_t candidate) const {
    const std::vector<double>& chances = belief_.chances();
    if (!among_plans()) return chances[candidate];
    const double others = chances[belief_.none()] + chances[belief_.nothing()];
    return chances[candidate] / std::max(1 - others, 1e-12);
}

void Identifier::name_plan(Verdict& verdict) const {
    const double chance = chance_of_plan(verdict.candidate);
    if (verdict.locks < kProof || chance < 0.5) return name_nobody(verdict);
    verdict.kind = Verdict::Kind::candidate;
    verdict.certainty = chance * share(verdict.candidate);
}

}  // namespace m47::identify
