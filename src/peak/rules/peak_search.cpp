// SPDX-License-Identifier: GPL-3.0-or-later
#include "peak_search.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace m47::peak {
namespace {

// What stands out by less in single readings is not looked at more closely.
constexpr double kStandsOutDb = 0.1;
// Beside a peak that is one it is lower by this at least. A lock is a sign as well.
constexpr double kBendDb = 0.25;
constexpr double kLockedBendDb = 0.1;
// Noise alone is nowhere so much stronger than elsewhere.
constexpr double kAboveAllDb = 0.6;
// Readings of one place that differ by more are taken once more.
constexpr double kScatterDb = 0.35;
constexpr int kMostReadings = 4;
constexpr int kRounds = 5;
// The mean of two readings is off by so much, and the peak may be by so many steps.
constexpr double kMeanErrorDb = 0.085;
constexpr double kPeakErrorSteps = 0.25;
constexpr int kMostPasses = 3;
// A centre that is off by more than this is looked at anew around the better one.
constexpr double kCentred = 3.0;
// Farther from the points beside which it was seen a summit is no longer sure.
constexpr double kSeenFrom = 7.0;
// Where fewer places than these come to lie, the look around takes smaller steps.
constexpr int kLeastPlaces = 3;
// Two satellites whose distances differ by less have to be known better before one is chosen.
constexpr double kAlike = 8.0;
constexpr int kLongestDrive = 10;
constexpr double kWorseDb = 0.5;

// A place that is come to again has the same level, but for scatter and slow fading.
constexpr double kSameDb = 1.0;
constexpr double kSameButForPlayDb = 2.0;

/// How a search ends before its end.
struct Ended {
    SearchEnd how;
};

/// However the search ends, the motor does not go on.
class Stopped {
  public:
    explicit Stopped(Antenna& antenna) : antenna_(antenna) {}
    ~Stopped() { antenna_.stop(); }
    Stopped(const Stopped&) = delete;
    Stopped& operator=(const Stopped&) = delete;

  private:
    Antenna& antenna_;
};

bool within(double value, double limit) {
    return std::abs(value) <= limit;
}

/// The steps of a look around from `lowest` to `highest`, small enough for a summit to show.
int coarse_for(int coarse, int lowest, int highest) {
    const int places = highest / coarse - lowest / coarse + 1;
    return places < kLeastPlaces ? coarse / 2 : coarse;
}

}  // namespace

PeakSearch::PeakSearch(Antenna& antenna, const SearchOptions& options)
    : antenna_(antenna), options_(options) {
    options_.coarse = coarse_for(options.coarse, lowest(), options.span);
}

SearchResult PeakSearch::run() {
    const Stopped stopped(antenna_);
    result_ = {};
    from_west_ = false;
    unsure_side_ = 0;
    refuted_.clear();
    result_.end = searched();
    return result_;
}

SearchEnd PeakSearch::searched() {
    try {
        return search();
    } catch (const Ended& ended) {
        const bool no_levels = ended.how == SearchEnd::lost || ended.how == SearchEnd::unit_changed;
        return no_levels && result_.moved ? back_at_start(ended.how) : ended.how;
    }
}

/// Without values the dish is better off where it was found.
SearchEnd PeakSearch::back_at_start(SearchEnd why) {
    try {
        move_to(0);
        return why;
    } catch (const Ended& ended) {
        return ended.how;
    }
}

SearchEnd PeakSearch::search() {
    // Nothing moves where the meter has no level to give.
    result_.start_db = mean_level();
    // How the play stood is not known: it is closed before anything is counted from here.
    move_to(0);
    const auto satellite = nearest_satellite();
    const auto there_db = satellite ? std::optional(level_at(*satellite)) : std::nullopt;
    if (antenna_.unit_changed()) return back_at_start(SearchEnd::unit_changed);
    if (!there_db || *there_db < *result_.start_db - kWorseDb)
        return back_at_start(SearchEnd::nothing_better);
    result_.peak_db = there_db;
    result_.peak = satellite;
    result_.curve = curve_.points;
    result_.by_carrier = curve_.of_carrier;
    return SearchEnd::found;
}

double PeakSearch::level_at(double satellite) {
    move_to(std::max(lowest(), static_cast<int>(std::lround(satellite))));
    return mean_level();
}

/// The look around goes on, to both sides alike, until a satellite is seen and nothing nearer can
/// be where nobody looked. At an end of the span, or under the scatter, none stands out: where it
/// is highest is tried last.
std::optional<double> PeakSearch::nearest_satellite() {
    for (int reach = options_.first_look;; reach += options_.coarse) {
        const bool all = !look_as_far_as(reach);
        const auto seen = satellites_in(result_.looked, kStandsOutDb);
        const double sure = all ? options_.span : reach - options_.coarse / 2.0;
        if (!seen.empty() && within(seen.front(), sure))
            if (const auto found = decide(seen)) return found;
        if (all) return decide(highest());
    }
}

/// Where the most is received of all places, if it is no noise.
std::vector<double> PeakSearch::highest() const {
    const auto [least, most] = std::ranges::minmax(result_.looked, {}, &Point::db);
    if (most.db < least.db + kAboveAllDb) return {};
    return {static_cast<double>(most.steps)};
}

/// False when there is no farther to look.
bool PeakSearch::look_as_far_as(int reach) {
    bool looked = false;
    for (int steps = -reach; steps <= reach; steps += options_.coarse) looked |= look_at(steps);
    return looked;
}

bool PeakSearch::look_at(int steps) {
    const auto known = [&](const Point& point) { return point.steps == steps; };
    if (steps < lowest() || steps > options_.span) return false;
    if (std::ranges::any_of(result_.looked, known)) return false;
    move_to(steps);
    const double db = level();
    if (steps == 0) hold_against_the_start(db);
    if (steps != 0) unsure_side_ = steps > 0 ? 1 : -1;
    result_.looked.push_back({steps, db});
    if (on_point) on_point(result_.looked.back(), true);
    return true;
}

/// At a limit of its own a motor takes a drive and stands. What is counted from then on is wrong by
/// all that it did not turn, and so is where the span ends on the other side. Nothing tells but the
/// level at a place that is known, and only where that is another one.
void PeakSearch::make_sure_of_the_start() {
    unsure_side_ = 0;
    move_to(0);
    hold_against_the_start(level());
}

void PeakSearch::hold_against_the_start(double db) {
    unsure_side_ = 0;
    const auto known = std::ranges::find(result_.looked, 0, &Point::steps);
    const bool looked = known != result_.looked.end();
    // Before the first move the play may have been open.
    const double there = looked ? known->db : *result_.start_db;
    const double same = looked ? kSameDb : kSameButForPlayDb;
    if (within(db - there, same)) return;
    if (!within(mean_level() - there, same)) throw Ended{SearchEnd::held};
}

/// The first of them, from the nearest on, that proves to be one; of two whose distances are alike,
/// the one that is nearer when looked at closely.
std::optional<double> PeakSearch::decide(const std::vector<double>& satellites) {
    std::optional<double> best;
    Curve of_best;
    for (const double about : satellites) {
        if (best && std::abs(about) - std::abs(*best) > kAlike) break;
        const auto found = refine(about);
        if (!found || (best && std::abs(*found) >= std::abs(*best))) continue;
        best = found;
        of_best = curve_;
    }
    curve_ = of_best;
    return best;
}

std::optional<double> PeakSearch::refine(double about) {
    const auto same = [&](double other) { return within(about - other, kCentred); };
    if (std::ranges::any_of(refuted_, same)) return std::nullopt;
    const auto found = close_look(about);
    if (!found) refuted_.push_back(about);
    return found;
}

std::optional<double> PeakSearch::close_look(double about) {
    std::optional<Curve> wide;
    int beside = options_.fine;
    for (int round = 0; round < kRounds; ++round) {
        curve_ = points_around(about, beside);
        const auto found = summit(curve_.points);
        const bool centred = found && within(*found - curve_.centre, kCentred);
        const bool could_lock = !curve_.of_carrier && curve_.locked_amid && !wide;
        if (centred && !could_lock) break;
        if (centred) {
            // Nearer to the peak the carrier keeps its lock.
            wide = curve_;
            beside = beside * 2 / 3;
        }
        about = next_centre(found, beside);
        // At an end of the span it would be the same place again.
        if (!centred && centre_for(about, beside) == curve_.centre) break;
    }
    if (wide && !(curve_.of_carrier && is_peak())) curve_ = *wide;
    return is_peak() ? sharpened() : std::nullopt;
}

/// Where to look next: at the summit, or beyond the higher end where none is seen.
double PeakSearch::next_centre(const std::optional<double>& found, int beside) const {
    const double reach = 2.0 * beside;
    const double centre = curve_.centre;
    if (found) return std::clamp(*found, centre - reach, centre + reach);
    const bool east = curve_.points.back().db > curve_.points.front().db;
    return east ? centre + beside : centre - beside;
}

/// By how much the middle is higher than what is beside it.
double PeakSearch::bend() const {
    const auto& points = curve_.points;
    return points[1].db - (points[0].db + points[2].db) / 2;
}

bool PeakSearch::is_peak() const {
    const double lowest = std::ranges::min(result_.looked, {}, &Point::db).db;
    const bool above = curve_.level_db >= lowest + kAboveAllDb;
    return above && bend() >= (curve_.of_carrier ? kLockedBendDb : kBendDb);
}

/// The flatter the curve is against the scatter, the more often its points are taken.
std::optional<double> PeakSearch::sharpened() {
    const double error = curve_.beside * kMeanErrorDb * std::numbers::sqrt2 / (4 * bend());
    const double passes = std::ceil(std::pow(error / kPeakErrorSteps, 2));
    for (int pass = 1; pass < std::min<double>(passes, kMostPasses); ++pass) {
        const Curve again = points_around(curve_.centre, curve_.beside);
        // What is of the carrier and what is not cannot be mixed.
        if (again.of_carrier != curve_.of_carrier) break;
        curve_.points.insert(curve_.points.end(), again.points.begin(), again.points.end());
    }
    const auto found = summit(curve_.points);
    return found && within(*found - curve_.centre, kSeenFrom) ? found : std::nullopt;
}

/// The place nearest to `about` that has room on both sides.
int PeakSearch::centre_for(double about, int beside) const {
    return std::clamp(static_cast<int>(std::lround(about)), lowest() + beside,
                      options_.span - beside);
}

PeakSearch::Curve PeakSearch::points_around(double about, int beside) {
    beside = std::min(beside, (options_.span - lowest()) / 2);
    const int centre = centre_for(about, beside);
    std::vector<Point> levels;
    std::vector<Point> carriers;
    bool amid = false;
    for (const int steps : {centre - beside, centre, centre + beside}) {
        move_to(steps);
        levels.push_back({steps, mean_level()});
        // Without a lock in the middle there is none to be had beside it.
        const auto mer = steps <= centre || amid ? this->mer() : std::nullopt;
        if (mer) carriers.push_back({steps, carrier_level(levels.back().db, *mer)});
        amid |= mer && steps == centre;
        if (on_point) on_point(levels.back(), false);
    }
    if (carriers.size() == levels.size())
        return {carriers, levels[1].db, centre, beside, true, amid};
    return {levels, levels[1].db, centre, beside, false, amid};
}

std::optional<double> PeakSearch::mer() {
    go_on();
    ++result_.readings;
    return antenna_.mer();
}

double PeakSearch::level() {
    // One answer can get lost on the line.
    for (int attempt = 0; attempt < 2; ++attempt) {
        go_on();
        ++result_.readings;
        if (const auto value = antenna_.level()) return *value;
    }
    throw Ended{antenna_.strayed() ? SearchEnd::unit_changed : SearchEnd::lost};
}

double PeakSearch::mean_level() {
    double sum = level();
    double least = sum;
    double most = sum;
    int count = 1;
    do {
        const double next = level();
        least = std::min(least, next);
        most = std::max(most, next);
        sum += next;
        ++count;
    } while (count < kMostReadings && (most - least) / count > kScatterDb / 2);
    return sum / count;
}

void PeakSearch::move_to(int steps) {
    steps = std::clamp(steps, lowest(), options_.span);
    if (steps * unsure_side_ < 0) make_sure_of_the_start();
    if (steps < result_.shaft || !from_west_) drive_to(steps - options_.backlash);
    from_west_ = true;
    drive_to(steps);
}

void PeakSearch::drive_to(int steps) {
    while (steps != result_.shaft) {
        go_on();
        const int by = std::clamp(steps - result_.shaft, -kLongestDrive, kLongestDrive);
        result_.shaft += by;
        result_.moved = true;
        if (!antenna_.drive(by)) throw Ended{SearchEnd::astray};
    }
}

void PeakSearch::go_on() const {
    if (cancelled && cancelled()) throw Ended{SearchEnd::cancelled};
}

}  // namespace m47::peak
