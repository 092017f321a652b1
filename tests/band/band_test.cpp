// SPDX-License-Identifier: GPL-3.0-or-later
#include "band_test.h"

#include <cmath>
#include <functional>

#include "carriers.h"
#include "sweep_plan.h"

namespace m47::band {
namespace {

measurement::Reading reading(double level) {
    return {static_cast<float>(level)};
}

/// A flat carrier.
struct Flat {
    double centre;
    double width;
    double density;  ///< dB in 1 MHz
};

constexpr double kFloor = 22;

/// What a filter of 8 MHz shows of `carriers` over a floor.
double seen(const std::vector<Flat>& carriers, double mhz) {
    double power = 8 * power_of(kFloor);
    for (const Flat& carrier : carriers) {
        const double low = std::max(mhz - 4, carrier.centre - carrier.width / 2);
        const double high = std::min(mhz + 4, carrier.centre + carrier.width / 2);
        power += std::max(0.0, high - low) * power_of(carrier.density);
    }
    return level_of(power);
}

SweepPlan swept(const std::vector<Flat>& carriers, const SweepSpan& span) {
    SweepPlan plan(span);
    int place = 0;
    while (const auto mhz = plan.next()) {
        // As much as the meter scatters, now up, now down.
        const double jitter = 0.2 * std::sin(7.3 * ++place);
        plan.take({*mhz, reading(seen(carriers, *mhz) + jitter)});
    }
    return plan;
}

BandCurve curve_of(const std::vector<double>& levels) {
    BandCurve curve;
    for (std::size_t k = 0; k < levels.size(); ++k)
        curve.take({1000.0 + static_cast<double>(k), reading(levels[k])});
    return curve;
}

}  // namespace

void BandTest::a_curve_keeps_its_samples_in_order() {
    BandCurve curve;
    curve.take({1010, reading(40)});
    curve.take({1000, reading(30)});
    curve.take({1005, {}});
    curve.take({1010, reading(50)});
    QCOMPARE(curve.size(), std::size_t{2});
    QCOMPARE(curve.mhz(0), 1000.0);
    QCOMPARE(curve.level(1), 50.0);
    QCOMPARE(curve.level_at(1005).value(), 40.0);
    QCOMPARE(curve.level_at(1010).value(), 50.0);
    QVERIFY(!curve.level_at(999) && !curve.level_at(1011));
}

void BandTest::peaks_stand_out_of_their_valleys() {
    const BandCurve curve = curve_of({30, 31, 40, 39, 41, 33, 30, 32, 31, 38, 30});
    const std::vector<Peak> peaks = find_peaks(curve, 3);
    QCOMPARE(peaks.size(), std::size_t{2});
    QCOMPARE(peaks[0].left, std::size_t{0});
    QCOMPARE(peaks[0].top, std::size_t{4});
    QCOMPARE(peaks[0].right, std::size_t{6});
    QCOMPARE(peaks[1].top, std::size_t{9});
    QCOMPARE(height_of(curve, peaks[1]), 8.0);
    QVERIFY(find_peaks(curve, 12).empty());
    QVERIFY(find_peaks(BandCurve(), 3).empty());
    QVERIFY(find_peaks(curve_of({30}), 3).empty());
    // The band ends within a carrier.
    QCOMPARE(find_peaks(curve_of({45, 44, 30, 31}), 3).size(), std::size_t{1});
    QCOMPARE(find_peaks(curve_of({30, 31, 44, 45}), 3).size(), std::size_t{1});
}

void BandTest::a_plain_sweep_asks_every_step() {
    const SweepPlan plan = swept({{1000, 30, 50}}, {950, 1012, 5.0});
    QCOMPARE(plan.asked(), 14);
    QCOMPARE(plan.curve().mhz(0), 950.0);
    QCOMPARE(plan.curve().mhz(1), 955.0);
    QCOMPARE(plan.curve().mhz(12), 1010.0);
    QCOMPARE(plan.curve().mhz(13), 1012.0);
}

void BandTest::a_clever_sweep_asks_where_something_is() {
    const SweepPlan plan = swept({{1040, 30, 40}}, {920, 1220, {}});
    QVERIFY2(plan.asked() < 80, qPrintable(QString::number(plan.asked())));
    for (const double edge : {1025.0, 1055.0}) {
        int near = 0;
        for (const Sample& sample : plan.curve().samples())
            if (std::abs(sample.mhz - edge) <= 1) ++near;
        QVERIFY2(near >= 2, "an edge is not followed down to 1 MHz");
    }
}

void BandTest::a_silent_frequency_is_not_asked_again() {
    SweepPlan plan({920, 1100, {}});
    std::map<double, int> asked;
    while (const auto mhz = plan.next()) {
        QVERIFY(++asked[*mhz] == 1);
        const bool silent = static_cast<int>(*mhz) % 3 == 0;
        plan.take({*mhz, silent ? measurement::Reading() : reading(seen({{1000, 20, 45}}, *mhz))});
    }
    QVERIFY(plan.curve().size() < static_cast<std::size_t>(plan.asked()));
}

void BandTest::an_empty_band_is_asked_coarsely_alone() {
    const SweepPlan plan = swept({}, {});
    QCOMPARE(plan.asked(), 247);
    QVERIFY(find_carriers(plan.curve()).empty());
}

void BandTest::carriers_have_centre_width_level_and_height() {
    const std::vector<Flat> sky{{1003, 33, 50}, {1071, 26, 38}, {1150, 10, 44}};
    const SweepPlan plan = swept(sky, {920, 1250, {}});
    const std::vector<Carrier> found = find_carriers(plan.curve());
    QCOMPARE(found.size(), sky.size());
    for (std::size_t k = 0; k < sky.size(); ++k) {
        QVERIFY2(std::abs(found[k].centre - sky[k].centre) <= 1,
                 qPrintable(QString::number(found[k].centre)));
        QVERIFY2(std::abs(found[k].width - sky[k].width) <= 2,
                 qPrintable(QString::number(found[k].width)));
        const double level = seen(sky, sky[k].centre);
        QVERIFY(std::abs(found[k].level - level) <= 0.5);
        QVERIFY(std::abs(found[k].height - (level - seen({}, 1000))) <= 1);
    }
    QVERIFY(std::abs(measured_filter(plan.curve()).value() - 8) < 1.5);
}

void BandTest::a_narrow_carrier_is_not_as_wide_as_the_filter() {
    const std::vector<Carrier> found =
        find_carriers(swept({{1043, 4, 50}}, {920, 1200, {}}).curve(), 8);
    QCOMPARE(found.size(), std::size_t{1});
    QVERIFY(std::abs(found[0].centre - 1043) <= 1);
    QVERIFY2(std::abs(found[0].width - 4) <= 2, qPrintable(QString::number(found[0].width)));
}

/// Where carriers lie over one another their edges are steeper than the filter is wide.
void BandTest::slopes_that_no_filter_makes_are_not_taken_for_one() {
    BandCurve curve;
    for (int k = 0; k <= 100; ++k) {
        const double outside = std::max(0.0, std::abs(k - 50.0) - 20);
        const double share = std::clamp(1 - outside / 4, 0.001, 1.0);
        curve.take({1000.0 + k, reading(50 + level_of(share))});
    }
    QVERIFY(!measured_filter(curve));
    QVERIFY(!measured_filter(BandCurve()));
}

void BandTest::a_carrier_at_the_end_of_the_band_is_none() {
    const SweepPlan plan = swept({{925, 30, 50}, {1100, 30, 50}}, {920, 1110, {}});
    const std::vector<Carrier> found = find_carriers(plan.curve());
    QVERIFY2(found.empty(), qPrintable(QString::number(found.empty() ? 0 : found[0].centre)));
}

/// Whatever the levels are: every question is a new one inside the span, and they end.
void BandTest::what_is_asked_stays_bounded() {
    for (int seed = 1; seed <= 20; ++seed) {
        SweepPlan plan({920, 1120, {}});
        std::set<double> asked;
        quint32 state = static_cast<quint32>(seed);
        while (const auto mhz = plan.next()) {
            QVERIFY(*mhz >= 920 && *mhz <= 1120);
            QVERIFY(asked.insert(*mhz).second);
            QVERIFY(plan.expected() > plan.asked());
            state = state * 1664525 + 1013904223;
            plan.take({*mhz, reading(20 + static_cast<double>(state >> 16) / 600)});
        }
        QVERIFY(asked.size() <= 401);
        find_carriers(plan.curve());
    }
}

}  // namespace m47::band

QTEST_GUILESS_MAIN(m47::band::BandTest)
