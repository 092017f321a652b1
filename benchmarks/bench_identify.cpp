// SPDX-License-Identifier: GPL-3.0-or-later
// Which satellite a dish points at, on the simulated orbit: how often the right position is named,
// how certain, in what time, beside two plain ways to find out.
// bench_identify [TRIALS [FIRST SEED [ROW...]]]: sky k has the seed 1000 + k, its dish and link the
// seed k; without rows all of them. "name" takes twice as many trials, most others fewer.
// With M47_BENCH_TELL=1 it tells of each trial that did not end right.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "figure.h"
#include "identifier.h"
#include "jitter.h"
#include "sky_stand.h"

namespace {

using namespace m47;
using identify::Arc;
using identify::Candidate;
using identify::Question;
using identify::Verdict;

constexpr const char* kFolder = "/usr/share/dvb/dvb-s";
constexpr std::uint64_t kSkySeeds = 1000;
constexpr int kFewestTransponders = 5;
constexpr double kSure = 0.95;
/// A second satellite this little weaker in the beam counts as being between the two, dB.
constexpr double kEven = 1;

double between(meter::Jitter& chance, double low, double high) {
    return (low + high) / 2 + chance.around_zero((high - low) / 2);
}

/// One sky, with the time that was spent on it.
struct Dish {
    SkyStand sky;
    identify::Lnb converter = identify::Lnb::universal();
    identify::Costs costs{};
    int state = -1;
    double seconds = 0;
    int levels = 0;
    int locks = 0;

    identify::Answer ask(const Question& question) {
        const identify::LnbState lnb = converter.state(question.state);
        if (question.state != state) seconds += costs.change_of_state;
        state = question.state;
        sky.set_time(seconds);
        if (question.kind == Question::Kind::level) {
            seconds += costs.level;
            ++levels;
            return {.db = sky.level(lnb.high_voltage, lnb.tone, question.if_mhz)};
        }
        seconds += costs.lock;
        ++locks;
        const int rate = static_cast<int>(std::lround(question.rate * 1000));
        const SkyStand::Lock lock = sky.lock(lnb.high_voltage, lnb.tone, question.if_mhz, rate);
        identify::Answer answer{.locked = lock.locked};
        if (lock.locked) answer.offset = lock.offset;
        return answer;
    }
};

struct Outcome {
    Verdict verdict;
    QString name;  ///< of what is named; empty for none
};

using Way = std::function<Outcome(Dish&, const Arc&)>;

Outcome named(const Arc& arc, const Verdict& verdict) {
    const bool is_name = verdict.kind == Verdict::Kind::candidate;
    return {verdict, is_name ? arc.candidates()[verdict.candidate].name : QString()};
}

void tell(const Dish& dish, const Arc& arc, const identify::Identifier& identifier) {
    if (std::getenv("M47_BENCH_TELL") == nullptr) return;
    std::printf("  drift %.1f, %d levels, %d locks, %.0f s;", dish.sky.drift(), dish.levels,
                dish.locks, dish.seconds);
    const auto& belief = identifier.belief();
    for (int k = 0; k < 4; ++k) {
        const std::size_t which = belief.order()[static_cast<std::size_t>(k)];
        std::printf(" %s %.4f",
                    which < arc.size() ? qUtf8Printable(arc.candidates()[which].name)
                                       : (which == belief.none() ? "none" : "nothing"),
                    belief.chances()[which]);
        if (which >= arc.size()) continue;
        const auto best = belief.front(which).best();
        std::printf(" (%.1f cn %.1f drift %.0f: %.1f)", best.east, best.cn, best.drift, best.log);
    }
    for (const auto& [front, weight] : belief.ideas())
        if (front->kind() == identify::Front::Kind::unlisted) {
            const auto best = front->best();
            std::printf(" [beside %s at %.1f cn %.1f drift %.1f: %.1f]",
                        qUtf8Printable(arc.candidates()[front->candidate()].name), best.east,
                        best.cn, best.drift, best.log);
        }
    for (const auto& lock : identifier.locks())
        std::printf(" lock %d %.0f %.1f at %.1f: %d", lock.state, lock.if_mhz, lock.rate,
                    lock.above, lock.locked ? 1 : 0);
    std::printf(" fit %.1f\n",
                belief.front(identifier.verdict().candidate).fit(identifier.evidence()));
}

Outcome by_belief(Dish& dish, const Arc& arc) {
    identify::Identifier identifier(arc, dish.converter.states());
    while (const auto question = identifier.next_question())
        identifier.take(*question, dish.ask(*question));
    tell(dish, arc, identifier);
    return named(arc, identifier.verdict());
}

/// The first ten transponders of each candidate in turn, until three of one have locked.
Outcome by_turns(Dish& dish, const Arc& arc) {
    constexpr int kAsked = 10;
    constexpr int kEnough = 3;
    for (std::size_t candidate = 0; candidate < arc.size(); ++candidate) {
        int asked = 0;
        int locked = 0;
        for (const identify::Carrier& carrier : arc.candidates()[candidate].carriers) {
            if (!carrier.lockable || asked++ == kAsked) continue;
            const Question question{Question::Kind::lock, carrier.state, carrier.if_mhz,
                                    carrier.rate};
            if (*dish.ask(question).locked) ++locked;
            if (asked >= kAsked) break;
        }
        if (locked < kEnough) continue;
        return named(arc,
                     {.kind = Verdict::Kind::candidate, .candidate = candidate, .certainty = 1});
    }
    return named(arc, {.kind = Verdict::Kind::none_of_these});
}

struct Sample {
    Question question;
    double db;
};

/// The chance that something of the candidate's own tables is at a place.
double listed_at(const Arc& arc, std::size_t candidate, const Question& question) {
    double dark = 1;
    for (const auto& emitter : arc.around(candidate)[static_cast<std::size_t>(question.state)])
        if (emitter.candidate == candidate)
            dark *= 1 - emitter.chance * emitter.share(question.if_mhz, 0);
    return 1 - dark;
}

/// How well the levels go with what the tables of a candidate list, -1 to 1.
double fit_of(const Arc& arc, std::size_t candidate, const std::vector<Sample>& samples) {
    double listed_sum = 0;
    double db_sum = 0;
    double listed_squares = 0;
    double db_squares = 0;
    double products = 0;
    for (const Sample& sample : samples) {
        const double listed = listed_at(arc, candidate, sample.question);
        listed_sum += listed;
        db_sum += sample.db;
        listed_squares += listed * listed;
        db_squares += sample.db * sample.db;
        products += listed * sample.db;
    }
    const auto count = static_cast<double>(samples.size());
    const double spread =
        (listed_squares - listed_sum * listed_sum / count) * (db_squares - db_sum * db_sum / count);
    return (products - listed_sum * db_sum / count) / std::sqrt(spread + 1e-9);
}

/// The correlation of 240 levels with the tables.
Outcome by_correlation(Dish& dish, const Arc& arc) {
    constexpr int kPlaces = 60;
    constexpr double kStep = 20;
    std::vector<Sample> samples;
    for (int state = 0; state < identify::kStates; ++state)
        for (int k = 0; k < kPlaces; ++k) {
            const Question question{Question::Kind::level, state,
                                    identify::kLowestIf + kStep * (k + 0.5)};
            samples.push_back({question, *dish.ask(question).db});
        }
    Verdict verdict{.kind = Verdict::Kind::candidate, .certainty = 1};
    double most = -2;
    for (std::size_t candidate = 0; candidate < arc.size(); ++candidate) {
        const double fit = fit_of(arc, candidate, samples);
        if (fit > most) verdict.candidate = candidate;
        most = std::max(most, fit);
    }
    return named(arc, verdict);
}

enum class Sky { full, blank, between, removed, removed_on_axis };

/// The dish looks at what is not among the candidates.
bool is_removed(Sky kind) {
    return kind == Sky::removed || kind == Sky::removed_on_axis;
}

struct Trial {
    SkySettings settings;
    std::size_t target = 0;
    double lead = 0;  ///< dB by which the target is stronger in the beam than the next
    double next = 0;  ///< beams from where the dish looks to the next one
};

void note_next(Trial& trial, const Arc& arc) {
    const double own = arc.distance(trial.target, trial.settings.east) / arc.beam();
    trial.next = 180;
    for (const std::size_t other : arc.neighbours(trial.target))
        trial.next = std::min(trial.next, arc.distance(other, trial.settings.east) / arc.beam());
    trial.lead = 12 * (trial.next * trial.next - own * own);
}

/// Only one is what the dish looks at: the target is the strongest, or, where that is none of the
/// candidates, the dish looks at no other one, half a beam beside it included.
bool is_clear(const Trial& trial, Sky kind) {
    return is_removed(kind) ? trial.next > 0.5 : trial.lead >= kEven;
}

/// The middles of gaps so wide that neither side is within a beam.
std::vector<double> gaps_of(const Arc& arc) {
    std::vector<double> positions;
    for (const Candidate& candidate : arc.candidates())
        positions.insert(positions.end(), candidate.positions.begin(), candidate.positions.end());
    std::ranges::sort(positions);
    std::vector<double> gaps;
    for (std::size_t k = 1; k < positions.size(); ++k)
        if (positions[k] - positions[k - 1] > 2 * arc.beam())
            gaps.push_back((positions[k] + positions[k - 1]) / 2);
    return gaps;
}

Trial trial_of(int number, Sky kind, const Arc& arc, const std::vector<std::size_t>& targets,
               const SkySettings& usual) {
    meter::Jitter chance(static_cast<std::uint64_t>(number));
    Trial trial;
    trial.settings = usual;
    trial.settings.seed = kSkySeeds + static_cast<std::uint64_t>(number);
    trial.settings.cn_db = between(chance, 8, 16);
    trial.target = targets[static_cast<std::size_t>(number) % targets.size()];
    const std::vector<double>& positions = arc.candidates()[trial.target].positions;
    // Beams to either side: on the axis is what a dish that has been peaked looks at.
    const double beside = kind == Sky::removed_on_axis ? 0.05 : 0.5;
    constexpr int kTries = 1000;
    for (int tries = 0; tries < kTries; ++tries) {
        const double at = positions[chance.below(positions.size())];
        trial.settings.east = at + chance.around_zero(beside * arc.beam());
        if (arc.is_nearest(trial.target, trial.settings.east)) break;
    }
    note_next(trial, arc);
    if (kind == Sky::blank) trial.settings.cn_db = -40;
    if (kind == Sky::between) {
        const std::vector<double> gaps = gaps_of(arc);
        trial.settings.east = gaps[static_cast<std::size_t>(number) % gaps.size()];
    }
    return trial;
}

struct Sums {
    int trials = 0;
    int right = 0;
    int wrong = 0;
    int surely_wrong = 0;
    int clear = 0;
    int right_clear = 0;
    std::vector<double> seconds;
    std::vector<double> reckoned;  ///< seconds of this machine for a trial
    std::array<int, 12> certain{};
    std::array<int, 12> certain_right{};

    double percent(int count) const { return 100.0 * count / trials; }
};

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values.empty() ? 0 : values[values.size() / 2];
}

/// Tenths, and the last one in two: from 0.9 and from 0.95, and 0.99.
std::size_t class_of(double certainty) {
    if (certainty >= 0.99) return 11;
    if (certainty >= kSure) return 10;
    return static_cast<std::size_t>(certainty * 10);
}

void count(Sums& sums, bool clear, const Outcome& outcome, bool right) {
    const bool is_name = !outcome.name.isEmpty();
    ++sums.trials;
    sums.right += right ? 1 : 0;
    sums.wrong += is_name && !right ? 1 : 0;
    sums.surely_wrong += is_name && !right && outcome.verdict.certainty >= kSure ? 1 : 0;
    sums.clear += clear ? 1 : 0;
    sums.right_clear += right && clear ? 1 : 0;
    const std::size_t place = class_of(outcome.verdict.certainty);
    ++sums.certain[place];
    sums.certain_right[place] += right ? 1 : 0;
}

/// All that the trials have in common.
struct Bench {
    const SkyTables& tables;
    identify::Lnb converter;
    SkySettings usual;  ///< what all its skies have alike
    int first = 0;
    std::size_t programs = 0;  ///< above 0: the candidates are ten plans of so many programs each
    std::vector<Candidate> candidates = identify::candidates_of_tables(
        identify::read_tables(QString::fromLatin1(kFolder)), converter);
    Arc arc{candidates, usual.dish_cm};
    std::vector<std::size_t> targets{};

    Bench(const SkyTables& all, int first_seed, const identify::Lnb& lnb, const SkySettings& alike)
        : tables(all), converter(lnb), usual(alike), first(first_seed) {
        usual.oscillator = lnb.oscillator;
        usual.tone_oscillator = lnb.upper_oscillator.value_or(lnb.oscillator);
        usual.circular = lnb.circular;
        for (std::size_t k = 0; k < candidates.size(); ++k)
            if (candidates[k].lockable() >= kFewestTransponders) targets.push_back(k);
    }

    /// So many candidates: the target and what is nearest to it; beyond those that there are,
    /// others with the same tables moved in frequency.
    std::vector<Candidate> known_of(const Trial& trial, std::size_t count) const {
        constexpr double kMovedMhz = 17;
        std::vector<std::pair<double, std::size_t>> order;
        for (std::size_t k = 0; k < candidates.size(); ++k)
            order.emplace_back(k == trial.target ? -1 : arc.distance(k, trial.settings.east), k);
        std::ranges::sort(order);
        std::vector<Candidate> known;
        for (std::size_t k = 0; k < count; ++k) {
            known.push_back(candidates[order[k % order.size()].second]);
            if (k < order.size()) continue;
            known.back().name += QLatin1String(" moved");
            known.back().positions.clear();
            for (identify::Carrier& carrier : known.back().carriers) {
                carrier.east.reset();
                carrier.if_mhz += kMovedMhz * std::floor(static_cast<double>(k) /
                                                         static_cast<double>(order.size()));
            }
        }
        return known;
    }

    /// Programs of the target by chance, where it is not removed, and of others.
    std::vector<Candidate> plans_of(const Trial& trial, Sky kind) const {
        constexpr std::size_t kPlans = 10;
        meter::Jitter chance(trial.settings.seed);
        std::vector<Candidate> plans;
        while (plans.size() < kPlans) {
            const bool own = plans.empty() && kind == Sky::full;
            const std::size_t which = own ? trial.target : targets[chance.below(targets.size())];
            if (!own && which == trial.target) continue;
            const Candidate& table = candidates[which];
            Candidate plan{.name = table.name, .is_plan = true};
            std::vector<identify::Carrier> measured = table.carriers;
            std::erase_if(measured, [](const auto& carrier) { return !carrier.lockable; });
            for (std::size_t k = 0; k < programs; ++k) {
                plan.carriers.push_back(measured[chance.below(measured.size())]);
                plan.carriers.back().east.reset();
            }
            identify::join_same_carriers(plan);
            plans.push_back(plan);
        }
        return plans;
    }

    std::vector<Candidate> known_of(const Trial& trial, Sky kind, std::size_t count) const {
        if (programs > 0) return plans_of(trial, kind);
        if (count > 0) return known_of(trial, count);
        std::vector<Candidate> known = candidates;
        if (is_removed(kind))
            known.erase(known.begin() + static_cast<std::ptrdiff_t>(trial.target));
        return known;
    }

    Sums run(Sky kind, int trials, const Way& way, std::size_t known_count = 0) const {
        Sums sums;
        for (int number = first; number < first + trials; ++number) {
            const Trial trial = trial_of(number, kind, arc, targets, usual);
            Dish dish{SkyStand(tables, trial.settings), converter};
            const QString& target = candidates[trial.target].name;
            const Arc known(known_of(trial, kind, known_count), usual.dish_cm);
            const std::clock_t began = std::clock();
            const Outcome outcome = way(dish, known);
            const double took = static_cast<double>(std::clock() - began) / CLOCKS_PER_SEC;
            const bool right = kind == Sky::full ? outcome.name == target : outcome.name.isEmpty();
            if (!right && std::getenv("M47_BENCH_TELL") != nullptr)
                std::printf("trial %d: %s at %.2f lead %.1f cn %.1f named %s %.3f locks %d\n",
                            number, qUtf8Printable(target), trial.settings.east, trial.lead,
                            trial.settings.cn_db, qUtf8Printable(outcome.name),
                            outcome.verdict.certainty, outcome.verdict.locks);
            count(sums, is_clear(trial, kind), outcome, right);
            sums.seconds.push_back(dish.seconds);
            sums.reckoned.push_back(took);
        }
        return sums;
    }
};

void print_row(const char* what, const Sums& sums) {
    std::printf("%-32s %5d %8.1f %8.1f %8.1f %8.1f %9.1f %8.2f\n", what, sums.trials,
                sums.percent(sums.right), sums.percent(sums.wrong), sums.percent(sums.surely_wrong),
                sums.clear > 0 ? 100.0 * sums.right_clear / sums.clear : 0.0, median(sums.seconds),
                median(sums.reckoned));
    std::fflush(stdout);
}

void print_reliability(const Sums& sums) {
    constexpr std::array<const char*, 12> kNames = {"0.0", "0.1", "0.2", "0.3", "0.4",  "0.5",
                                                    "0.6", "0.7", "0.8", "0.9", "0.95", "0.99"};
    std::puts("certainty   answers   right %");
    for (std::size_t k = 0; k < kNames.size(); ++k)
        if (sums.certain[k] > 0)
            std::printf("from %-4s  %8d  %8.1f\n", kNames[k], sums.certain[k],
                        100.0 * sums.certain_right[k] / sums.certain[k]);
}

/// The rows of the tables: all, or those that are named.
struct Rows {
    const SkyTables& tables;
    int trials;
    int first;
    std::vector<std::string> wanted;

    bool wants(const char* row) const {
        return wanted.empty() || std::ranges::count(wanted, row) > 0;
    }
    int part(int divisor) const { return std::max(1, trials / divisor); }
    Bench on(const identify::Lnb& lnb, const SkySettings& alike) const {
        return {tables, first, lnb, alike};
    }

    Sums print_name(const Bench& bench) const {
        // Of so many that chance moves the share by 0.3 of 100.
        Sums belief = bench.run(Sky::full, 2 * trials, by_belief);
        print_row("by belief", belief);
        constexpr double kMostNotRight = 2;
        constexpr double kMostSeconds = 60;
        bench::print_figure("identification, not the right position",
                            100 - belief.percent(belief.right), kMostNotRight, "of 100 skies");
        bench::print_figure("identification, seconds in the median", median(belief.seconds),
                            kMostSeconds, "seconds at the stated pace");
        return belief;
    }

    void print_nobody(const Bench& bench, const char* row, const char* name, Sky kind, int count,
                      Sums& all) const {
        if (!wants(row)) return;
        const Sums sums = bench.run(kind, count, by_belief);
        print_row(name, sums);
        for (std::size_t k = 0; k < all.certain.size(); ++k) {
            all.certain[k] += sums.certain[k];
            all.certain_right[k] += sums.certain_right[k];
        }
    }

    /// What is asked by belief, and of all its answers how right they were.
    void print_belief(const Bench& bench) const {
        Sums all;
        if (wants("name")) all = print_name(bench);
        print_nobody(bench, "blank", "by belief, blank sky", Sky::blank, part(10), all);
        print_nobody(bench, "between", "by belief, between satellites", Sky::between, part(10),
                     all);
        print_nobody(bench, "removed", "by belief, satellite removed", Sky::removed, part(3), all);
        print_nobody(bench, "removed-on", "the same, dish peaked on it", Sky::removed_on_axis,
                     part(3), all);
        print_reliability(all);
    }

    void print_plain_ways(const Bench& bench) const {
        if (wants("correlation"))
            print_row("240 levels, correlation", bench.run(Sky::full, trials, by_correlation));
        if (wants("turns"))
            print_row("ten transponders each in turn", bench.run(Sky::full, part(10), by_turns));
    }

    void print_growth(const Bench& bench) const {
        if (!wants("growth")) return;
        for (const std::size_t count : {10U, 30U, 100U, 138U, 200U, 300U})
            print_row(qUtf8Printable(QStringLiteral("by belief, %1 candidates").arg(count)),
                      bench.run(Sky::full, part(25), by_belief, count));
    }

    void print_plans(Bench bench) const {
        if (!wants("plans")) return;
        for (const std::size_t programs : {10U, 30U, 100U}) {
            bench.programs = programs;
            const QString of = QStringLiteral("plans of %1 programs").arg(programs);
            const Sums sums = bench.run(Sky::full, part(10), by_belief);
            print_row(qUtf8Printable(of), sums);
            print_row(qUtf8Printable(of + QLatin1String(", none its")),
                      bench.run(Sky::removed, part(10), by_belief));
            print_reliability(sums);
        }
    }

    void print_other(const char* row, const char* name, const identify::Lnb& lnb,
                     const SkySettings& alike, int divisor = 10) const {
        if (!wants(row)) return;
        const Bench bench = on(lnb, alike);
        std::printf("%zu candidates, %zu with enough to lock\n", bench.arc.size(),
                    bench.targets.size());
        const Sums sums = bench.run(Sky::full, part(divisor), by_belief);
        print_row(name, sums);
        print_reliability(sums);
    }
};

}  // namespace

int main(int argc, char** argv) {
    const SkyTables tables{kFolder};
    const Rows rows{tables,
                    argc > 1 ? std::atoi(argv[1]) : 1000,
                    argc > 2 ? std::atoi(argv[2]) : 0,
                    {argv + std::min(argc, 3), argv + argc}};
    const identify::Lnb universal = identify::Lnb::universal();
    const Bench bench = rows.on(universal, {});
    std::printf("%zu candidates, %zu of them with %d transponders or more to lock\n",
                bench.arc.size(), bench.targets.size(), kFewestTransponders);
    std::printf("%-32s %5s %8s %8s %8s %8s %9s %8s\n", "", "n", "right %", "wrong %", "sure %",
                "clear %", "median s", "cpu s");
    rows.print_belief(bench);
    rows.print_plain_ways(bench);
    rows.print_growth(bench);
    // Whoever measures a program has seen it on air.
    rows.print_plans(rows.on(universal, {.off_air_percent = 5}));
    rows.print_other("off-air", "30 % off air", universal, {.off_air_percent = 30});
    rows.print_other("unequal", "neighbours of unequal power", universal, {.unequal_db = 3});
    rows.print_other("own-powers", "orbit's own powers", universal, {.own_powers = true});
    rows.print_other("single", "one oscillator 10600", identify::Lnb::single(10600), {}, 20);
    identify::Lnb circular = identify::Lnb::single(10750);
    circular.circular = true;
    rows.print_other("circular", "circular, 10750", circular, {}, 20);
    // With a smaller dish the beam is as wide as three positions.
    rows.print_other("c-band", "C band 5150, dish of 240 cm", identify::Lnb::single(5150),
                     {.dish_cm = 240}, 20);
    return 0;
}
