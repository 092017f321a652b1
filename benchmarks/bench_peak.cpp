// SPDX-License-Identifier: GPL-3.0-or-later
// Searches the peak from 500 places of chance under satellites 3 degrees apart that all use one
// frequency, on motors with a play of 0 to 3 steps that stands anyhow, and compares it with a plain
// scan of the span. The search closes the play before it counts, as the program does each time: its
// start is where the dish looks then. bench_peak [TRIALS [FIRST SEED]]
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "dish.h"
#include "figure.h"
#include "motor.h"
#include "orbit_reception.h"
#include "peak_search.h"
#include "receiver.h"

namespace {

constexpr double kApart = 3.0;
constexpr double kFarthestStart = 3.0;
constexpr double kSkyMhz = 11500.0;
constexpr int kSpan = 50;
// The link of a trial; its satellites are as strong as each other, give or take 1.5 dB.
constexpr double kMiddleCnDb = 12.5;
constexpr double kCnEitherWayDb = 3.5;
constexpr double kStep = 0.1;
// What each costs on the line.
constexpr double kLevelSeconds = 0.2;
constexpr double kMerSeconds = 6.5;
constexpr double kDriveSeconds = 0.6;

meter::ScanTables satellites() {
    std::vector<meter::ListedPosition> positions;
    for (int k = -4; k <= 4; ++k)
        positions.push_back(
            {k * kApart, {"A"}, {{kSkyMhz, 27500, meter::InnerCode::r3_4, 'V', false}}});
    return meter::ScanTables(std::move(positions));
}

meter::OrbitOptions chance(std::uint64_t seed) {
    meter::OrbitOptions options;
    options.seed = seed;
    options.off_air_percent = options.unlisted_percent = 0.0;
    meter::Jitter dice(seed + 4711);
    options.cn_db = kMiddleCnDb + dice.around_zero(kCnEitherWayDb);
    return options;
}

/// As the meter writes it.
double one_decimal(double value) {
    return std::round(value * 10.0) / 10.0;
}

/// A dish of the simulated sky, in its own time.
class Stand : public m47::peak::Antenna {
  public:
    Stand(const meter::Orbit& orbit, double east, int backlash, int slack, std::uint64_t seed)
        : reception_(orbit),
          dish_(east, backlash, slack),
          jitter_(seed),
          receiver_(jitter_, reception_) {
        settings_.if_mhz = kSkyMhz - 9750.0;
        settings_.lnb_on = true;
        motor_.take_time();
        pass(0.0);
    }

    bool drive(int steps) override {
        motor_.drive(steps > 0, std::abs(steps), true);
        pass(std::abs(steps) / 15.0 + kDriveSeconds);
        if (!closed_ && steps > 0 && motor_.shaft() == 0) closed_ = dish_.east();
        farthest_ = std::max(farthest_, std::abs(motor_.shaft()));
        return true;
    }

    void stop() noexcept override { motor_.stop(); }

    std::optional<double> level() override {
        pass(kLevelSeconds);
        ++readings_;
        return one_decimal(receiver_.level(settings_));
    }

    std::optional<double> mer() override {
        pass(kMerSeconds);
        ++readings_;
        const meter::QpskQuality quality = receiver_.qpsk(settings_);
        if (!quality.locked) return std::nullopt;
        return one_decimal(quality.mer_db);
    }
    bool unit_changed() override { return false; }

    double east() const { return dish_.east(); }
    double seconds() const { return seconds_; }
    int farthest() const { return farthest_; }
    int readings() const { return readings_; }
    /// Where it looked when the shaft was back at its start for the first time, from the west.
    double closed(double otherwise) const { return closed_.value_or(otherwise); }

  private:
    void pass(double seconds) {
        seconds_ += seconds;
        motor_.turn_for(seconds);
        dish_.follow(motor_.shaft());
        reception_.point(dish_.east());
        reception_.set_time(seconds_);
    }

    meter::OrbitReception reception_;
    meter::Dish dish_;
    meter::Motor motor_;
    meter::Jitter jitter_;
    meter::Receiver receiver_;
    meter::Settings settings_;
    std::optional<double> closed_;
    double seconds_ = 0.0;
    int farthest_ = 0;
    int readings_ = 0;
};

void search(Stand& stand) {
    m47::peak::SearchOptions options;
    options.span = kSpan;
    m47::peak::PeakSearch(stand, options).run();
}

/// Every step of the span once, then back to the highest.
void scan(Stand& stand) {
    stand.drive(-kSpan);
    int best = -kSpan;
    double highest = *stand.level();
    for (int steps = 1 - kSpan; steps <= kSpan; ++steps) {
        stand.drive(1);
        const double level = *stand.level();
        if (level <= highest) continue;
        highest = level;
        best = steps;
    }
    stand.drive(best - kSpan);
}

struct Tally {
    int within = 0;    ///< a start as far from two satellites, to a step, counts for either
    int strictly = 0;  ///< it does not
    int as_found = 0;  ///< as within, of where the dish looked before its play was closed
    int outside = 0;
    std::vector<double> readings;
    std::vector<double> seconds;
};

bool at(const Stand& stand, double peak) {
    return std::abs(stand.east() - peak) <= kStep + 1e-9;
}

double nearest_to(double start) {
    return std::round(start / kApart) * kApart;
}

/// It ended at the satellite nearest to `start`, or at the other one where both are as far.
bool is_good(const Stand& stand, double start) {
    const double nearest = nearest_to(start);
    const double second = nearest + std::copysign(kApart, start - nearest);
    const bool even = std::abs(second - start) - std::abs(nearest - start) < kStep;
    return at(stand, nearest) || (even && at(stand, second));
}

template <typename Method>
void take(Method method, Tally& tally, const meter::ScanTables& tables, std::uint64_t seed) {
    meter::Jitter dice(seed * 7919 + 1);
    const double found = dice.around_zero(kFarthestStart);
    const int backlash = static_cast<int>(seed % 4);
    const int slack = static_cast<int>(dice.below(static_cast<std::size_t>(backlash) + 1));
    const meter::Orbit orbit(tables, chance(seed));
    Stand stand(orbit, found, backlash, slack, seed);
    method(stand);
    const double start = stand.closed(found);
    const bool good = is_good(stand, start);
    tally.strictly += at(stand, nearest_to(start));
    tally.within += good;
    tally.as_found += is_good(stand, found);
    tally.outside += stand.farthest() > kSpan;
    tally.readings.push_back(stand.readings());
    tally.seconds.push_back(stand.seconds());
    if (!good && std::getenv("M47_BENCH_TELL"))
        std::printf("seed %3llu start %+.2f backlash %d slack %d: ended at %+.2f\n",
                    static_cast<unsigned long long>(seed), start, backlash, slack, stand.east());
}

double median(std::vector<double> values) {
    std::ranges::nth_element(values,
                             values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

void print(const char* name, const Tally& tally, int trials) {
    std::printf(
        "%-12s within a step %5.1f %% (strictly %5.1f %%, as found %5.1f %%)  readings %3.0f (most "
        "%3.0f)  %4.0f s  outside %d\n",
        name, 100.0 * tally.within / trials, 100.0 * tally.strictly / trials,
        100.0 * tally.as_found / trials, median(tally.readings), std::ranges::max(tally.readings),
        median(tally.seconds), tally.outside);
}

}  // namespace

int main(int argc, char** argv) {
    const int trials = argc > 1 ? std::atoi(argv[1]) : 500;
    const int first = argc > 2 ? std::atoi(argv[2]) : 1;
    const meter::ScanTables tables = satellites();
    Tally searched;
    Tally scanned;
    for (int i = 0; i < trials; ++i) {
        const auto seed = static_cast<std::uint64_t>(first + i);
        take(search, searched, tables, seed);
        take(scan, scanned, tables, seed);
    }
    std::printf("peak: %d starts, seeds %d to %d\n", trials, first, first + trials - 1);
    print("search", searched, trials);
    print("linear scan", scanned, trials);
    const double missed = 100.0 * (trials - searched.within) / trials;
    bench::print_figure("peak: percent not within a step", missed, 1.0, "500 starts");
    bench::print_figure("peak: readings, median", median(searched.readings), 20.0, "one reading");
    bench::print_figure("peak: drives outside the span", searched.outside, 0.0, "none");
    return missed <= 1.0 && searched.outside == 0 && median(searched.readings) <= 20.0 ? 0 : 1;
}
