// SPDX-License-Identifier: GPL-3.0-or-later
#include "visit_comparison.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace m47::sites {
namespace {

using measurement::Measurement;
using measurement::MeasureMode;
using measurement::Quantity;
using measurement::Reading;
using measurement::SeriesKey;

struct MeaningWords {
    Meaning meaning;
    Bilingual words;
};

constexpr std::array<MeaningWords, 8> kMeanings{{
    {Meaning::lost, {"lost", "perso"}},
    {Meaning::worse, {"worse", "peggiore"}},
    {Meaning::incomparable, {"not comparable", "non confrontabile"}},
    {Meaning::elsewhere, {"another transponder", "altro transponder"}},
    {Meaning::unasked, {"not measured now", "ora non misurato"}},
    {Meaning::same, {"same", "uguale"}},
    {Meaning::better, {"better", "migliore"}},
    {Meaning::fresh, {"new", "nuovo"}},
}};

/// Further away it is another transponder, MHz; less is fine tuning.
constexpr float kFineTuning = 3;

using Places = std::unordered_multimap<SeriesKey, std::size_t, measurement::SeriesKeyHash>;

bool received(const std::optional<VisitMeasurement>& one) {
    return one && std::ranges::any_of(one->measurement.readings,
                                      [](const Reading& reading) { return reading.measured(); });
}

/// What the meter measures of a carrier is another thing analog and digital.
bool alike(Quantity quantity, const Measurement& one, const Measurement& other) {
    if (quantity != Quantity::level && quantity != Quantity::cn) return true;
    return one.mode == other.mode || one.mode == MeasureMode::none ||
           other.mode == MeasureMode::none;
}

/// Levels of one unit as they stand; of two, in dBuV.
std::optional<std::pair<Reading, Reading>> comparable(Quantity quantity, const Measurement& one,
                                                      const Measurement& other) {
    if (!alike(quantity, one, other)) return {};
    std::pair<Reading, Reading> both{one.reading(quantity), other.reading(quantity)};
    if (quantity != Quantity::level) return both;
    if (!one.unit || !other.unit) return {};
    if (*one.unit == *other.unit) return both;
    const auto in_one_unit = [](Reading& reading, LevelUnit unit) {
        reading.value = static_cast<float>(in_dbuv(static_cast<double>(reading.value), unit));
    };
    in_one_unit(both.first, *one.unit);
    in_one_unit(both.second, *other.unit);
    return both;
}

/// Both lay beyond the same end of the range, or no bit was wrong: nothing tells them apart.
bool identical(const std::pair<Reading, Reading>& both) {
    return both.first.measured() && both.first.value == both.second.value &&
           both.first.mark == both.second.mark;
}

/// What the quantities say together.
class Judgement {
  public:
    void take(const Change& loss, double threshold) {
        if (loss.least) note(*loss.least / threshold);
        if (loss.most && !loss.least) rest_ = std::min(rest_, *loss.most / threshold);
        worse_ = worse_ || (loss.least && *loss.least >= threshold);
        better_ = better_ || (loss.most && *loss.most <= -threshold);
        same_ = same_ ||
                (loss.least && loss.most && *loss.least > -threshold && *loss.most < threshold);
    }
    void take_identical() {
        note(0);
        same_ = true;
    }

    Meaning meaning() const {
        if (worse_) return Meaning::worse;
        if (better_) return Meaning::better;
        return same_ ? Meaning::same : Meaning::incomparable;
    }
    /// The most that is known to have been lost; else the least gain.
    double badness() const { return worst_ ? *worst_ : rest_; }

  private:
    void note(double part) { worst_ = std::max(worst_.value_or(part), part); }

    std::optional<double> worst_;
    double rest_ = 0;
    bool worse_ = false;
    bool better_ = false;
    bool same_ = false;
};

void compare_readings(ProgramComparison& program, const Thresholds& thresholds) {
    Judgement judgement;
    for (std::size_t k = 0; k < kComparedQuantities.size(); ++k) {
        const Quantity quantity = kComparedQuantities[k];
        const auto both =
            comparable(quantity, program.earlier->measurement, program.later->measurement);
        if (both) program.changes[k] = change_between(quantity, both->first, both->second);
        if (program.changes[k])
            judgement.take(loss_of(quantity, *program.changes[k]),
                           threshold_of(quantity, thresholds));
        else if (both && identical(*both))
            judgement.take_identical();
        else
            program.unknown[k] = program.earlier->measurement.reading(quantity).measured();
    }
    program.meaning = judgement.meaning();
    program.badness = judgement.badness();
}

void judge(ProgramComparison& program, const Thresholds& thresholds) {
    const bool then = received(program.earlier);
    const bool now = received(program.later);
    if (program.earlier && program.later &&
        is_elsewhere(program.earlier->measurement, program.later->measurement))
        program.meaning = Meaning::elsewhere;
    else if (then && now)
        compare_readings(program, thresholds);
    else if (then)
        program.meaning = program.later ? Meaning::lost : Meaning::unasked;
    else if (now)
        program.meaning = Meaning::fresh;
    else
        program.meaning = program.later ? Meaning::incomparable : Meaning::unasked;
}

/// As their program_key() says, without making any, and of one transponder.
bool same_program(const Measurement& one, const Measurement& other) {
    if (!(one.program == other.program)) return false;
    if (one.program.known()) return !is_elsewhere(one, other);
    return one.frequency == other.frequency && one.oscillator == other.oscillator;
}

/// Those of `visit` that count, where they are. A measurement is large: it is not copied for each
/// repetition of its program.
std::vector<const VisitMeasurement*> last_of_each(const std::vector<VisitMeasurement>& visit) {
    std::vector<const VisitMeasurement*> last;
    Places places;
    const auto place_of = [&](const VisitMeasurement& one) {
        SeriesKey key = program_key(one);
        const auto [from, to] = places.equal_range(key);
        for (auto met = from; met != to; ++met)
            if (same_program(last[met->second]->measurement, one.measurement)) return met->second;
        places.emplace(std::move(key), last.size());
        last.push_back(&one);
        return last.size() - 1;
    };
    std::size_t expected = 0;
    for (const VisitMeasurement& one : visit) {
        // A pass goes through its programs in the order of the pass before.
        if (expected >= last.size() || !same_program(last[expected]->measurement, one.measurement))
            expected = place_of(one);
        last[expected] = &one;
        expected = (expected + 1) % last.size();
    }
    return last;
}

/// Puts the later measurements beside the earlier ones.
class Pairing {
  public:
    std::vector<ProgramComparison> rows;

    explicit Pairing(const std::vector<const VisitMeasurement*>& earlier) {
        rows.reserve(earlier.size());
        for (const VisitMeasurement* one : earlier) {
            SeriesKey key = program_key(*one);
            places_.emplace(key, rows.size());
            rows.push_back({.key = std::move(key), .earlier = *one});
        }
    }

    void take(const std::vector<const VisitMeasurement*>& later) {
        std::vector<const VisitMeasurement*> left;
        for (const VisitMeasurement* one : later)
            if (!put(*one, true)) left.push_back(one);
        // A number that stands for another transponder now is told as that.
        for (const VisitMeasurement* one : left)
            if (!put(*one, false)) rows.push_back({.key = program_key(*one), .later = *one});
        join_by_tuning();
    }

  private:
    /// Beside the earlier one of its program that has none yet, `same` of its transponder alone.
    bool put(const VisitMeasurement& one, bool same) {
        const auto [from, to] = places_.equal_range(program_key(one));
        for (auto met = from; met != to; ++met) {
            ProgramComparison& row = rows[met->second];
            if (row.later || (same && is_elsewhere(row.earlier->measurement, one.measurement)))
                continue;
            row.later = one;
            return true;
        }
        return false;
    }

    /// What of one frequency and oscillator was in one of the visits alone.
    struct Alone {
        std::vector<std::size_t> earlier;
        std::vector<std::size_t> later;
    };

    static SeriesKey tuning_of(SeriesKey key) {
        key.program = {};
        return key;
    }

    /// Of a pair one has a program and one has none; where two could be meant, none is.
    void join_by_tuning() {
        std::unordered_map<SeriesKey, Alone, measurement::SeriesKeyHash> alone;
        for (std::size_t k = 0; k < rows.size(); ++k) {
            if (!rows[k].key.frequency || (rows[k].earlier && rows[k].later)) continue;
            Alone& there = alone[tuning_of(rows[k].key)];
            (rows[k].earlier ? there.earlier : there.later).push_back(k);
        }
        for (const auto& [tuning, there] : alone)
            if (there.earlier.size() == 1 && there.later.size() == 1)
                join(rows[there.earlier.front()], rows[there.later.front()]);
        std::erase_if(rows,
                      [](const ProgramComparison& row) { return !row.earlier && !row.later; });
    }

    static void join(ProgramComparison& earlier, ProgramComparison& later) {
        if (earlier.key.program.known() == later.key.program.known()) return;
        if (later.key.program.known()) earlier.key = later.key;
        earlier.later.swap(later.later);
    }

    Places places_;
};

/// The worst first; what is known to be alike in that keeps its order.
bool is_worse(const ProgramComparison& one, const ProgramComparison& other) {
    if (one.meaning != other.meaning) return one.meaning < other.meaning;
    return one.badness > other.badness;
}

/// Each is moved once, as it is large.
std::vector<ProgramComparison> by_badness(std::vector<ProgramComparison> rows) {
    std::vector<ProgramComparison*> order;
    order.reserve(rows.size());
    for (ProgramComparison& row : rows) order.push_back(&row);
    std::ranges::stable_sort(order,
                             [](const ProgramComparison* one, const ProgramComparison* other) {
                                 return is_worse(*one, *other);
                             });
    std::vector<ProgramComparison> sorted;
    sorted.reserve(rows.size());
    for (ProgramComparison* row : order) sorted.push_back(std::move(*row));
    return sorted;
}

}  // namespace

double threshold_of(Quantity quantity, const Thresholds& thresholds) {
    if (measurement::is_error_rate(quantity)) return thresholds.ber;
    if (quantity == Quantity::cn) return thresholds.cn;
    return quantity == Quantity::mer ? thresholds.mer : thresholds.level;
}

const std::optional<Change>& ProgramComparison::change(Quantity quantity) const {
    static const std::optional<Change> kNone;
    const auto place = std::ranges::find(kComparedQuantities, quantity);
    if (place == kComparedQuantities.end()) return kNone;
    return changes[static_cast<std::size_t>(place - kComparedQuantities.begin())];
}

bool ProgramComparison::is_unknown(Quantity quantity) const {
    const auto place = std::ranges::find(kComparedQuantities, quantity);
    return place != kComparedQuantities.end() &&
           unknown[static_cast<std::size_t>(place - kComparedQuantities.begin())];
}

bool is_elsewhere(const Measurement& one, const Measurement& other) {
    if (!one.frequency || !other.frequency) return false;
    return one.oscillator.has_value() == other.oscillator.has_value() &&
           std::fabs(*one.frequency - *other.frequency) > kFineTuning;
}

SeriesKey program_key(const VisitMeasurement& one) {
    SeriesKey key = measurement::series_key(one.measurement);
    key.unit.reset();
    return key;
}

std::vector<VisitMeasurement> counting(const std::vector<VisitMeasurement>& visit) {
    std::vector<VisitMeasurement> last;
    for (const VisitMeasurement* one : last_of_each(visit)) last.push_back(*one);
    return last;
}

std::vector<ProgramComparison> compare_visits(const std::vector<VisitMeasurement>& earlier,
                                              const std::vector<VisitMeasurement>& later,
                                              const Thresholds& thresholds) {
    Pairing pairing(last_of_each(earlier));
    pairing.take(last_of_each(later));
    for (ProgramComparison& program : pairing.rows) judge(program, thresholds);
    return by_badness(std::move(pairing.rows));
}

std::optional<double> fall_of(const ProgramComparison& compared) {
    std::optional<double> fall;
    for (const Quantity quantity : {Quantity::level, Quantity::mer}) {
        const std::optional<Change>& change = compared.change(quantity);
        if (!change) continue;
        const std::optional<double> least = loss_of(quantity, *change).least;
        if (least && *least > fall.value_or(0)) fall = least;
    }
    return fall;
}

QString meaning_text(Meaning meaning, const Texts& texts) {
    const auto found = std::ranges::find(kMeanings, meaning, &MeaningWords::meaning);
    return texts.pick(found->words);
}

}  // namespace m47::sites
