// SPDX-License-Identifier: GPL-3.0-or-later
// The search for the peak on made-up skies and on the simulated one.
#include "peak_test.h"

#include <cmath>
#include <stdexcept>

#include "dish.h"
#include "orbit_reception.h"
#include "peak_search.h"
#include "receiver.h"

namespace m47::peak {
namespace {

constexpr double kBeamSteps = 22.4;
constexpr double kNoiseDb = 47.0;

/// A dish on a motor with play, under satellites without chance.
class MadeUpSky : public Antenna {
  public:
    struct Satellite {
        double steps;  ///< east of where the dish looks at first
        double db;     ///< above the noise, on the axis
    };

    explicit MadeUpSky(std::vector<Satellite> satellites, int backlash = 0)
        : satellites_(std::move(satellites)), dish_(0.0, backlash, 0) {}

    bool drive(int steps) override {
        if (steps == 0) throw std::logic_error("a drive by nothing");
        drives.push_back(steps);
        if (drives_left == 0) return false;
        --drives_left;
        shaft += steps;
        farthest = std::max(farthest, std::abs(shaft));
        dish_.follow(shaft);
        return true;
    }
    void stop() noexcept override {
        ++stops;
        drives_before_stop = drives.size();
    }
    std::optional<double> level() override {
        if (fault) throw std::runtime_error("the line");
        came_from_west &= drives.empty() || drives.back() > 0;
        if (silent > 0) {
            --silent;
            return std::nullopt;
        }
        return 10.0 * std::log10(std::pow(10.0, kNoiseDb / 10.0) * (1.0 + carriers()));
    }
    bool unit_changed() override { return false; }
    std::optional<double> mer() override {
        if (!locks) return std::nullopt;
        return 10.0 * std::log10(carriers());
    }

    double looks_at() const { return dish_.east() * 10.0; }

    bool locks = false;
    bool fault = false;
    int silent = 0;  ///< so many questions for the level are not answered
    int drives_left = 1000;
    std::vector<int> drives;
    std::size_t drives_before_stop = 0;
    int stops = 0;
    int shaft = 0;
    int farthest = 0;
    bool came_from_west = true;

  private:
    double carriers() const {
        double sum = 0.0;
        for (const Satellite& satellite : satellites_) {
            const double widths = (looks_at() - satellite.steps) / kBeamSteps;
            sum += std::pow(10.0, (satellite.db - 12.0 * widths * widths) / 10.0);
        }
        return sum;
    }

    std::vector<Satellite> satellites_;
    meter::Dish dish_;
};

SearchResult search(Antenna& antenna, int span = 50) {
    SearchOptions options;
    options.span = span;
    return PeakSearch(antenna, options).run();
}

/// The simulated sky, a satellite every 3 degrees; the readings as the meter writes them.
class SimulatedSky : public Antenna {
  public:
    SimulatedSky(const meter::Orbit& orbit, double east, int backlash, std::uint64_t seed)
        : reception_(orbit),
          dish_(east, backlash, 0),
          jitter_(seed),
          receiver_(jitter_, reception_) {
        settings_.if_mhz = 1750.0;
        settings_.lnb_on = true;
        reception_.point(east);
    }
    bool drive(int steps) override {
        shaft_ += steps;
        dish_.follow(shaft_);
        reception_.point(dish_.east());
        return true;
    }
    void stop() noexcept override {}
    std::optional<double> level() override {
        return std::round(receiver_.level(settings_) * 10.0) / 10.0;
    }
    bool unit_changed() override { return false; }
    std::optional<double> mer() override {
        const meter::QpskQuality quality = receiver_.qpsk(settings_);
        if (!quality.locked) return std::nullopt;
        return std::round(quality.mer_db * 10.0) / 10.0;
    }
    double east() const { return dish_.east(); }

  private:
    meter::OrbitReception reception_;
    meter::Dish dish_;
    meter::Jitter jitter_;
    meter::Receiver receiver_;
    meter::Settings settings_;
    int shaft_ = 0;
};

}  // namespace

void PeakTest::a_parabola_has_its_summit() {
    std::vector<Point> points;
    for (const int steps : {-7, 1, 4, 12}) {
        const double away = steps - 2.5;
        points.push_back({steps, 60.0 - 0.02 * away * away});
    }
    QVERIFY(std::abs(summit(points).value() - 2.5) < 1e-9);
}

void PeakTest::what_has_no_summit() {
    QVERIFY(!summit({{0, 50.0}, {6, 55.0}}));
    QVERIFY(!summit({{0, 50.0}, {6, 49.0}, {12, 50.0}}));
    QVERIFY(!summit({{0, 50.0}, {0, 51.0}, {0, 50.0}}));
}

void PeakTest::satellites_along_the_arc() {
    const std::vector<Point> points{{-20, 55.0}, {-10, 50.0}, {0, 52.0},  {10, 52.0},
                                    {20, 50.0},  {30, 60.0},  {40, 55.0}, {50, 54.9}};
    const auto found = satellites_in(points, 0.5);
    QCOMPARE(found.size(), std::size_t{2});
    QVERIFY(std::abs(found[0] - 5.0) < 1e-9);
    QVERIFY(found[1] > 28.0 && found[1] < 34.0);
    QVERIFY(satellites_in(points, 11.0).empty());
    QVERIFY(satellites_in({{0, 50.0}, {10, 60.0}}, 0.5).empty());
}

void PeakTest::the_carrier_alone() {
    // Ten times the rest: 10/11 of all power.
    QVERIFY(std::abs(carrier_level(60.0, 10.0) - (60.0 - 0.414)) < 0.001);
    QVERIFY(std::abs(carrier_level(60.0, 0.0) - (60.0 - 3.010)) < 0.001);
}

void PeakTest::the_peak_is_found_data() {
    QTest::addColumn<double>("satellite");
    QTest::addColumn<int>("backlash");
    QTest::addColumn<bool>("locks");
    for (const double satellite : {-30.0, -14.6, -3.2, 0.0, 7.5, 21.0, 30.0})
        for (const int backlash : {0, 3})
            for (const bool locks : {false, true})
                QTest::addRow("%g, play %d, %s", satellite, backlash, locks ? "lock" : "no lock")
                    << satellite << backlash << locks;
}

void PeakTest::the_peak_is_found() {
    QFETCH(double, satellite);
    QFETCH(int, backlash);
    QFETCH(bool, locks);
    MadeUpSky sky({{satellite, 13.0}}, backlash);
    sky.locks = locks;
    const SearchResult result = search(sky);
    QVERIFY(result.end == SearchEnd::found);
    QCOMPARE(result.by_carrier, locks);
    QVERIFY2(std::abs(sky.looks_at() - satellite) <= 1.0,
             qPrintable(QString::number(sky.looks_at())));
    QCOMPARE(result.shaft, sky.shaft);
    QVERIFY(sky.came_from_west);
    QVERIFY(sky.farthest <= 50);
    QVERIFY(result.readings <= 35);
    QVERIFY2(sky.stops == 1 && sky.drives_before_stop == sky.drives.size(), "the last word");
    for (const int drive : sky.drives) QVERIFY(std::abs(drive) <= 10);
}

void PeakTest::the_nearest_of_two_is_taken() {
    MadeUpSky sky({{-17.0, 14.0}, {13.0, 12.0}});
    QVERIFY(search(sky).end == SearchEnd::found);
    // Without a lock the stronger one draws the peak of all power towards itself.
    QVERIFY2(std::abs(sky.looks_at() - 13.0) <= 2.0, qPrintable(QString::number(sky.looks_at())));
}

void PeakTest::a_strong_neighbour_does_not_draw_the_carrier() {
    const meter::ScanTables tables(
        {{0.0, {"A"}, {{11500.0, 27500, meter::InnerCode::r3_4, 'V', false}}},
         {3.0, {"B"}, {{11500.0, 22000, meter::InnerCode::r3_4, 'V', true}}}});
    meter::OrbitOptions options;
    options.cn_db = 14.0;
    options.off_air_percent = options.unlisted_percent = options.drift_mhz = 0.0;
    for (options.seed = 1; options.seed <= 10; ++options.seed) {
        const meter::Orbit orbit(tables, options);
        SimulatedSky sky(orbit, -0.73, 2, options.seed);
        const SearchResult result = search(sky);
        QVERIFY(result.end == SearchEnd::found && result.by_carrier);
        QVERIFY(std::abs(sky.east()) <= 0.1);
    }
}

void PeakTest::on_the_peak_already() {
    MadeUpSky sky({{0.0, 13.0}});
    const SearchResult result = search(sky);
    QVERIFY(result.end == SearchEnd::found);
    QVERIFY(std::abs(result.peak.value()) < 0.1);
    QCOMPARE(sky.shaft, 0);
}

void PeakTest::the_span_is_never_left() {
    for (const int span : {10, 13, 20, 35, 50}) {
        for (const double satellite : {-60.0, -40.0, 40.0, 60.0}) {
            MadeUpSky sky({{satellite, 20.0}}, 3);
            search(sky, span);
            QVERIFY2(sky.farthest <= span, qPrintable(QString::number(span)));
        }
    }
}

/// As far as the shaft can come to a place from the west: the play takes four steps of that side.
void PeakTest::in_any_span_data() {
    QTest::addColumn<int>("span");
    QTest::addColumn<bool>("locks");
    for (const int span : {10, 11, 13, 14, 15, 20, 30, 50})
        for (const bool locks : {false, true})
            QTest::addRow("%d, %s", span, locks ? "lock" : "no lock") << span << locks;
}

void PeakTest::in_any_span() {
    QFETCH(int, span);
    QFETCH(bool, locks);
    for (int satellite = 4 - span; satellite <= span; ++satellite) {
        MadeUpSky sky({{static_cast<double>(satellite), 13.0}}, span % 4);
        sky.locks = locks;
        QVERIFY2(search(sky, span).end == SearchEnd::found, qPrintable(QString::number(satellite)));
        QVERIFY2(std::abs(sky.looks_at() - satellite) <= 1.0,
                 qPrintable(QString::number(satellite)));
        QVERIFY(sky.farthest <= span && sky.came_from_west);
    }
}

void PeakTest::nothing_there() {
    MadeUpSky sky({}, 2);
    const SearchResult result = search(sky);
    QVERIFY(result.end == SearchEnd::nothing_better && !result.peak);
    QCOMPARE(sky.shaft, 0);
    QCOMPARE(sky.stops, 1);
    QVERIFY2(result.looked.size() == 10, "all of the span");
}

void PeakTest::nothing_better_goes_back() {
    // The start is on the slope of a strong one that is out of reach; the faint one is fainter.
    MadeUpSky sky({{-24.0, 25.0}, {9.0, 1.0}});
    const SearchResult result = search(sky, 15);
    QVERIFY(result.end == SearchEnd::nothing_better);
    QCOMPARE(sky.shaft, 0);
}

void PeakTest::cancelled_at_any_step() {
    for (int allowed = 0; allowed < 30; allowed += 4) {
        MadeUpSky sky({{12.0, 13.0}}, 1);
        PeakSearch peak_search(sky, {});
        int asked = 0;
        peak_search.cancelled = [&] { return asked++ >= allowed; };
        const SearchResult result = peak_search.run();
        QVERIFY(result.end == SearchEnd::cancelled);
        QCOMPARE(asked, allowed + 1);
        QCOMPARE(result.shaft, sky.shaft);
        QVERIFY(sky.stops == 1 && sky.drives_before_stop == sky.drives.size());
    }
}

void PeakTest::an_exception_stops_the_motor() {
    MadeUpSky sky({{12.0, 13.0}});
    PeakSearch peak_search(sky, {});
    peak_search.on_point = [&](const Point&, bool) { sky.fault = true; };
    QVERIFY_EXCEPTION_THROWN((void)peak_search.run(), std::runtime_error);
    QCOMPARE(sky.stops, 1);
}

void PeakTest::a_motor_that_cannot_be_told() {
    MadeUpSky sky({{12.0, 13.0}});
    sky.drives_left = 3;
    QVERIFY(search(sky).end == SearchEnd::astray);
    QCOMPARE(sky.drives.size(), std::size_t{4});
    QCOMPARE(sky.stops, 1);
}

void PeakTest::a_lost_answer_is_asked_again() {
    MadeUpSky sky({{12.0, 13.0}});
    sky.silent = 1;
    QVERIFY(search(sky).end == SearchEnd::found);
}

void PeakTest::a_silent_meter_ends_it() {
    MadeUpSky sky({{12.0, 13.0}});
    sky.silent = 2;
    QVERIFY(search(sky).end == SearchEnd::lost);
    QVERIFY(sky.drives.empty() && sky.stops == 1);
}

void PeakTest::points_are_told() {
    MadeUpSky sky({{12.0, 13.0}});
    PeakSearch peak_search(sky, {});
    std::vector<Point> looked;
    int close = 0;
    peak_search.on_point = [&](const Point& point, bool looking) {
        if (looking)
            looked.push_back(point);
        else
            ++close;
    };
    const SearchResult result = peak_search.run();
    QCOMPARE(looked.size(), result.looked.size());
    QCOMPARE(close, static_cast<int>(result.curve.size()));
}

void PeakTest::under_the_simulated_sky() {
    std::vector<meter::ListedPosition> positions;
    for (int k = -3; k <= 3; ++k)
        positions.push_back(
            {3.0 * k, {"A"}, {{11500.0, 27500, meter::InnerCode::r3_4, 'V', false}}});
    const meter::ScanTables tables(std::move(positions));
    meter::OrbitOptions options;
    options.cn_db = 12.0;
    options.off_air_percent = options.unlisted_percent = 0.0;
    for (options.seed = 1; options.seed <= 30; ++options.seed) {
        const meter::Orbit orbit(tables, options);
        const double start = -1.3 + 2.6 * static_cast<double>(options.seed - 1) / 29.0;
        SimulatedSky sky(orbit, start, static_cast<int>(options.seed % 4), options.seed);
        QVERIFY(search(sky).end == SearchEnd::found);
        QVERIFY2(std::abs(sky.east()) <= 0.1 + 1e-9, qPrintable(QString::number(options.seed)));
        const double beside = -0.7 + 1.1 * static_cast<double>(options.seed - 1) / 29.0;
        SimulatedSky near(orbit, beside, static_cast<int>(options.seed % 4), options.seed);
        QVERIFY(search(near, 10).end == SearchEnd::found);
        QVERIFY2(std::abs(near.east()) <= 0.1 + 1e-9, qPrintable(QString::number(options.seed)));
    }
}

}  // namespace m47::peak

QTEST_GUILESS_MAIN(m47::peak::PeakTest)
