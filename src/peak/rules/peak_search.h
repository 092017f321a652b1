// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "antenna.h"
#include "beam_fit.h"

namespace m47::peak {

/// How far a search may go to either side, degrees.
inline constexpr int kLeastSpan = 1;
inline constexpr int kMostSpan = 20;
inline constexpr int kUsualSpan = 5;

struct SearchOptions {
    int span =
        kUsualSpan * kStepsOfDegree;  ///< steps; the shaft never leaves this around its start
    int backlash = 4;                 ///< steps; at least the play of any gear
    int coarse = 10;  ///< steps between the points of the look around, less than a beam; half of
                      ///< it where the span has room for two alone
    int first_look = 20;  ///< steps; how far the first look goes to either side
    int fine = 6;         ///< steps from the peak to the points beside it
};

/// How a search has ended.
enum class SearchEnd {
    found,           ///< the dish looks at the peak
    nothing_better,  ///< the shaft is back where it was, its play closed
    cancelled,       ///< the dish stands where it was then
    lost,            ///< the meter gave no value; the shaft is back where it was
    unit_changed,    ///< levels in two units say nothing; the shaft is back where it was
    astray,          ///< it is not sure how far the motor has turned
    held,  ///< the motor took its drives and did not turn as far, as at a limit of its own
};

/// What a search has found, and what it took.
struct SearchResult {
    SearchEnd end = SearchEnd::cancelled;
    std::optional<double> peak;  ///< steps of the shaft east of the start, where one was found
    int shaft = 0;               ///< where it stands, the same
    bool moved = false;
    int readings = 0;
    std::optional<double> start_db;  ///< level where the dish looked before anything moved
    std::optional<double> peak_db;   ///< level at the peak, where one was found
    bool by_carrier = false;  ///< the peak is that of the locked carrier, not of all in the filter
    std::vector<Point> looked;  ///< levels of the look around
    std::vector<Point> curve;   ///< around the peak, as fitted
};

/// Finds the peak of the satellite that is nearest to where the dish looks once the play of the
/// gear is closed, which is done first. Every place is come to from the west, so the play is always
/// the same; drives are of a degree at most, each ends by itself within the span, and the motor is
/// stopped however the search ends.
class PeakSearch {
  public:
    PeakSearch(Antenna& antenna, const SearchOptions& options);

    /// Asked before each drive and each reading; true ends the search.
    std::function<bool()> cancelled;
    /// Told of each point as it comes; `looking` while it is one of the look around.
    std::function<void(const Point& point, bool looking)> on_point;

    /// Searches once. An exception of the antenna or of those told goes through, with the motor
    /// stopped; result() says how far it came then.
    SearchResult run();
    const SearchResult& result() const { return result_; }

  private:
    struct Curve {
        std::vector<Point> points;  ///< west of the centre, at it, east of it; again so
        double level_db = 0.0;      ///< of all in the filter, at the centre
        int centre = 0;
        int beside = 0;
        bool of_carrier = false;
        bool locked_amid = false;
    };

    SearchEnd search();
    SearchEnd searched();
    SearchEnd back_at_start(SearchEnd why);
    double level_at(double satellite);
    std::optional<double> nearest_satellite();
    std::vector<double> highest() const;
    bool look_as_far_as(int reach);
    bool look_at(int steps);
    void make_sure_of_the_start();
    void hold_against_the_start(double db);
    std::optional<double> decide(const std::vector<double>& satellites);
    std::optional<double> refine(double about);
    int centre_for(double about, int beside) const;
    Curve points_around(double about, int beside);
    std::optional<double> close_look(double about);
    double next_centre(const std::optional<double>& found, int beside) const;
    double bend() const;
    bool is_peak() const;
    std::optional<double> sharpened();
    std::optional<double> mer();
    double level();
    double mean_level();
    void move_to(int steps);
    void drive_to(int steps);
    void go_on() const;
    int lowest() const { return options_.backlash - options_.span; }

    Antenna& antenna_;
    SearchOptions options_;
    SearchResult result_;
    Curve curve_;
    std::vector<double> refuted_;  ///< what looked like a satellite and is none
    bool from_west_ = false;       ///< the play is closed as every place is come to
    int unsure_side_ = 0;  ///< where it has turned since the start was seen: 1 east, -1 west
};

}  // namespace m47::peak
