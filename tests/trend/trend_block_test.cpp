// SPDX-License-Identifier: GPL-3.0-or-later
// What of a series is drawn: columns of pixels, pauses, the window and its axis. What is summed up
// in blocks is drawn as if every point had been looked at.
#include <QRandomGenerator>
#include <QTest>
#include <bit>
#include <cmath>

#include "trend_limits.h"
#include "trend_sampling.h"
#include "trend_window.h"

namespace m47::trend {
namespace {

constexpr int kPoints = 20000;
constexpr std::array<int, 4> kColumns{1, 7, 100, 900};

/// Points a second apart with everything in them that a column has to tell: rows without a value,
/// bit error rates below what the axis shows, failures, pauses, and passes that left the program
/// out.
std::vector<TrendPoint> random_points(quint32 seed) {
    QRandomGenerator random(seed);
    const auto one_in = [&](quint32 number) { return random.bounded(number) == 0; };
    std::vector<TrendPoint> points;
    double time = 1e9;
    for (int k = 0; k < kPoints; ++k) {
        time += one_in(700) ? 500 : 1;
        TrendPoint point;
        point.time = time;
        // Few values, so that there are equal ones, and long stretches without any.
        const bool none = k / 900 % 5 == 3;
        point.values = {one_in(97) || none ? NAN : 40 + static_cast<float>(random.bounded(30)),
                        one_in(50) ? 1e-12F : 1e-5F * static_cast<float>(random.bounded(9)),
                        k % 2 == 0 ? NAN : static_cast<float>(random.bounded(20))};
        if (one_in(40)) point.status = measurement::Verdict::fail;
        point.apart = one_in(300);
        points.push_back(point);
    }
    return points;
}

bool same(const std::vector<TrendSpot>& one, const std::vector<TrendSpot>& other) {
    const auto bits = [](double number) { return std::bit_cast<quint64>(number); };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [&](const TrendSpot& a, const TrendSpot& b) {
                          return bits(a.time) == bits(b.time) && bits(a.value) == bits(b.value);
                      });
}

/// A row at a time, with a level; none where that is no number.
struct At {
    double time;
    double level = 50;
    bool failed = false;
};

TrendSeries series_of(const QList<At>& rows) {
    TrendSeries series(measurement::SeriesKey{});
    for (const At& row : rows) {
        TrendPoint point;
        point.time = row.time;
        point.values = {static_cast<float>(row.level), NAN, NAN};
        point.status = row.failed ? measurement::Verdict::fail : measurement::Verdict::pass;
        series.add(point);
    }
    series.settle();
    return series;
}

/// Points a second apart from 0 on.
TrendSeries series_of_levels(const QList<double>& levels) {
    QList<At> rows;
    for (const double level : levels) rows += At{static_cast<double>(rows.size()), level};
    return series_of(rows);
}

/// "0:50 3:40 | 5:50"
QString drawn(const std::vector<TrendSpot>& spots) {
    QStringList texts;
    for (const TrendSpot& spot : spots)
        texts << (std::isnan(spot.value) ? QStringLiteral("|")
                                         : QStringLiteral("%1:%2").arg(spot.time).arg(spot.value));
    return texts.join(u' ');
}

TrendSamples levels_of(const TrendSeries& series, TrendRange shown, int columns) {
    return sample_trend(series, measurement::Quantity::level, shown, columns);
}

QString text_of(TrendRange range) {
    return QStringLiteral("%1 to %2").arg(range.lower, 0, 'g', 10).arg(range.upper, 0, 'g', 10);
}

}  // namespace

class TrendBlockTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void blocks_change_nothing_of_what_is_drawn_data() {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 3; ++seed) QTest::addRow("%u", seed) << seed;
    }

    void blocks_change_nothing_of_what_is_drawn() {
        QFETCH(quint32, seed);
        TrendSeries summed(measurement::SeriesKey{});
        TrendSeries plain(measurement::SeriesKey{});
        for (const TrendPoint& point : random_points(seed)) {
            summed.add(point);
            plain.add(point);
        }
        summed.settle();
        QCOMPARE(summed.blocks().size(), std::size_t{kPoints / TrendBlock::kPoints});
        QVERIFY(plain.blocks().empty());
        const double begin = plain.points().front().time;
        const double length = plain.points().back().time - begin;
        for (const measurement::Quantity quantity : measurement::kQuantities) {
            for (const int columns : kColumns) {
                for (int k = 0; k < 8; ++k) {
                    const TrendRange shown{begin + length * k / 20, begin + length * (1 - k / 40.)};
                    const TrendSamples one = sample_trend(summed, quantity, shown, columns);
                    const TrendSamples other = sample_trend(plain, quantity, shown, columns);
                    QVERIFY(one.dense && other.dense);
                    QVERIFY(same(one.line, other.line));
                    QVERIFY(same(one.dots, other.dots));
                    QVERIFY(same(one.failed, other.failed));
                    QCOMPARE(one.values.has_value(), other.values.has_value());
                    if (!one.values) continue;
                    QCOMPARE(one.values->lower, other.values->lower);
                    QCOMPARE(one.values->upper, other.values->upper);
                }
            }
        }
    }

    /// A clock that was set back: rows come between those that are summed up already.
    void rows_that_come_in_between_are_summed_up_anew() {
        TrendSeries twice(measurement::SeriesKey{});
        TrendSeries once(measurement::SeriesKey{});
        const std::vector<TrendPoint> points = random_points(9);
        for (const TrendPoint& point : points) twice.add(point);
        twice.settle();
        std::vector<TrendPoint> later(points.begin() + kPoints / 2,
                                      points.begin() + kPoints / 2 + 999);
        for (TrendPoint& point : later) point.time += 0.5;
        for (const TrendPoint& point : later) twice.add(point);
        twice.settle();
        for (const TrendPoint& point : points) once.add(point);
        for (const TrendPoint& point : later) once.add(point);
        once.settle();
        QCOMPARE(twice.points().size(), points.size() + later.size());
        QCOMPARE(twice.blocks().size(), twice.points().size() / TrendBlock::kPoints);
        const TrendRange all{points.front().time, points.back().time};
        for (const measurement::Quantity quantity : measurement::kQuantities) {
            const TrendSamples one = sample_trend(twice, quantity, all, 100);
            const TrendSamples other = sample_trend(once, quantity, all, 100);
            QVERIFY(same(one.line, other.line));
            QVERIFY(same(one.failed, other.failed));
        }
    }

    void what_is_usual_lies_between_powers_of_two_data() {
        QTest::addColumn<QList<double>>("spacings");
        QTest::addColumn<double>("longest");
        const auto row = [](const char* name, const QList<double>& spacings, double longest) {
            QTest::newRow(name) << spacings << longest;
        };
        const double none = std::numeric_limits<double>::infinity();
        row("nothing is usual yet", {10, 10}, none);
        row("three are enough", {10, 10, 10}, 64);
        row("within the same second", {0, 0, 0.5}, 4);
        row("a second", {1, 1, 1}, 8);
        row("just below eight", {7.9, 7.9, 7.9}, 32);
        row("eight", {8, 8, 8}, 64);
        row("few long ones", {1, 1, 1, 100, 100}, 8);
        row("half of them long", {1, 1, 100, 100}, 512);
        row("a clock that is set back", {10, 10, -25, 10}, 64);
        row("longer than anything lasts", {1e12, 1e12, 1e12}, 4 * std::exp2(31));
    }
    void what_is_usual_lies_between_powers_of_two() {
        QFETCH(QList<double>, spacings);
        QList<At> rows{{1000}};
        for (const double spacing : std::as_const(spacings)) rows += At{rows.last().time + spacing};
        QTEST(series_of(rows).longest_spacing(), "longest");
    }

    void a_pause_is_longer_than_four_usual_spacings() {
        const TrendRange all{0, 200};
        const TrendSeries joined = series_of({{0}, {10}, {20}, {30}, {94}, {104}});
        QCOMPARE(drawn(levels_of(joined, all, 20).line),
                 QStringLiteral("0:50 10:50 20:50 30:50 94:50 104:50"));
        const TrendSeries parted = series_of({{0}, {10}, {20}, {30}, {94.5}, {104}});
        QCOMPARE(drawn(levels_of(parted, all, 20).line),
                 QStringLiteral("0:50 10:50 20:50 30:50 | 94.5:50 104:50"));
    }

    void a_column_shows_its_first_least_greatest_and_last() {
        const TrendSeries series =
            series_of_levels({50, 60, 40, 55, 52, 51, 51, 51, 51, 30, 35, 70, 45, 44, 43, 42});
        const TrendSamples samples = levels_of(series, {0, 16}, 2);
        QVERIFY(samples.dense);
        QCOMPARE(drawn(samples.line), QStringLiteral("0:50 1:60 2:40 7:51 8:51 9:30 11:70 15:42"));
        QVERIFY(samples.dots.empty() && samples.failed.empty());
        QCOMPARE(text_of(*samples.values), QStringLiteral("30 to 70"));
    }

    void columns_are_summed_up_from_more_than_four_points_on() {
        const TrendSeries series =
            series_of_levels({50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65});
        QVERIFY(!levels_of(series, {0, 15}, 4).dense);
        QVERIFY(levels_of(series, {0, 15}, 3).dense);
        QCOMPARE(levels_of(series, {0, 15}, 4).line.size(), std::size_t(16));
        // At one time all of them are one column whatever its width.
        QVERIFY(!levels_of(series, {5, 5}, 1).dense);
    }

    void rows_at_one_time_have_no_columns() {
        QList<At> rows;
        for (int k = 0; k < 9; ++k) rows += At{5, 50.0 + k};
        QVERIFY(!levels_of(series_of(rows), {5, 5}, 1).dense);
        // In a second, and in less than one, they have.
        for (int k = 0; k < 9; ++k) rows[k].time = 5 + k / 8.0;
        QVERIFY(levels_of(series_of(rows), {5, 6}, 1).dense);
        QVERIFY(levels_of(series_of(rows), {5, 5.875}, 1).dense);
    }

    /// A pause of just four times what is usual parts nothing, also where it is summed up.
    void nothing_parts_what_is_joined() {
        TrendSeries apart{measurement::SeriesKey()};
        TrendSeries joined(measurement::SeriesKey(), true);
        for (const double time : {0.0, 60.0, 120.0, 180.0, 1e7})
            for (TrendSeries* series : {&apart, &joined}) {
                TrendPoint point;
                point.time = time;
                series->add(point);
            }
        QVERIFY(apart.longest_spacing() < 1000);
        QVERIFY(std::isinf(joined.longest_spacing()));
        TrendData data({}, true);
        std::vector<measurement::Measurement> rows(3);
        for (std::size_t k = 0; k < rows.size(); ++k) {
            rows[k].instant = 100.0 * static_cast<double>(k);
            rows[k].frequency = 11778.0F;
        }
        data.add(rows);
        QCOMPARE(data.series().size(), std::size_t{1});
        data.clear();
        data.add(rows);
        QVERIFY(std::isinf(data.series().front()->longest_spacing()));
    }

    void the_longest_spacing_parts_no_block() {
        TrendSeries summed(measurement::SeriesKey{});
        TrendSeries plain(measurement::SeriesKey{});
        for (int k = 0; k < 4 * TrendBlock::kPoints; ++k) {
            TrendPoint point;
            point.time = 10 * k + (k < 90 ? 0 : 54);
            point.values = {static_cast<float>(50 + k % 3), NAN, NAN};
            summed.add(point);
            plain.add(point);
        }
        summed.settle();
        QCOMPARE(summed.longest_spacing(), 64.0);
        const TrendRange all{0, plain.points().back().time};
        for (const int columns : {1, 2, 3, 5}) {
            const TrendSamples one = levels_of(summed, all, columns);
            QVERIFY(same(one.line, levels_of(plain, all, columns).line));
            QVERIFY(!drawn(one.line).contains(u'|'));
        }
    }

    void a_dot_has_eight_columns() {
        const TrendSeries series = series_of_levels({50, 51, 52, 53});
        QCOMPARE(drawn(levels_of(series, {0, 3}, 32).dots), QStringLiteral("0:50 1:51 2:52 3:53"));
        QVERIFY(levels_of(series, {0, 3}, 31).dots.empty());
    }

    void a_column_between_two_gaps_is_a_dot_or_a_stroke() {
        const double none = NAN;
        // Columns of eight points: the second has one value, the third stands alone with two.
        const TrendSeries series = series_of_levels(
            {50,   50, 51, 51, 50,   50,   50,   none, none, none, none, 53, none, none, none, none,
             none, 54, 55, 54, none, none, none, none, 56,   56,   56,   56, 56,   56,   56,   56});
        const TrendSamples samples = levels_of(series, {0, 32}, 4);
        QVERIFY(samples.dense);
        QCOMPARE(drawn(samples.line), QStringLiteral("0:50 2:51 6:50 | 17:54 18:55 19:54"));
        QCOMPARE(drawn(samples.dots), QStringLiteral("11:53 24:56"));
    }

    void a_gap_within_a_column_leads_no_line_to_the_next() {
        QList<double> levels{50, 51, 50, NAN, 50, 50, 50, 50, 60, 61, 60, 60, 60, 60, 60, 60};
        QCOMPARE(drawn(levels_of(series_of_levels(levels), {0, 16}, 2).line),
                 QStringLiteral("0:50 1:51 7:50 | 8:60 9:61 15:60"));
        levels[3] = 50;
        QCOMPARE(drawn(levels_of(series_of_levels(levels), {0, 16}, 2).line),
                 QStringLiteral("0:50 1:51 7:50 8:60 9:61 15:60"));
    }

    void a_column_marks_the_extremes_of_what_failed_data() {
        QTest::addColumn<QList<double>>("failed");
        QTest::addColumn<QString>("marks");
        QTest::newRow("none") << QList<double>{} << "";
        QTest::newRow("one") << QList<double>{40} << "0:40";
        QTest::newRow("alike") << QList<double>{40, 40} << "0:40";
        QTest::newRow("two") << QList<double>{40, 45} << "0:40 1:45";
        QTest::newRow("falling") << QList<double>{45, 40} << "1:40 0:45";
        QTest::newRow("three") << QList<double>{42, 40, 45} << "1:40 2:45";
        QTest::newRow("first of the same") << QList<double>{40, 45, 40, 45} << "0:40 1:45";
    }
    void a_column_marks_the_extremes_of_what_failed() {
        QFETCH(QList<double>, failed);
        QList<At> rows;
        for (int k = 0; k < 9; ++k) {
            const bool fails = k < failed.size();
            rows += At{static_cast<double>(k), fails ? failed[k] : 50, fails};
        }
        const TrendSamples samples = levels_of(series_of(rows), {0, 9}, 1);
        QVERIFY(samples.dense);
        QTEST(drawn(samples.failed), "marks");
    }

    void what_lies_at_the_edge_of_sight_is_in_sight() {
        const TrendSeries series = series_of_levels({90, 50, 51, 52, 10});
        QCOMPARE(text_of(*levels_of(series, {1, 3}, 100).values), QStringLiteral("50 to 52"));
        QCOMPARE(text_of(*levels_of(series, {0, 4}, 100).values), QStringLiteral("10 to 90"));
        QCOMPARE(drawn(levels_of(series, {1.5, 2.5}, 100).line), QStringLiteral("1:50 2:51 3:52"));
        QVERIFY(!levels_of(series, {1.1, 1.2}, 100).values);
    }

    void a_window_has_room_behind_its_newest_row() {
        TrendWindow window;
        QCOMPARE(text_of(window.shown()), QStringLiteral("0 to 60"));
        window.rows_came({1000, 2000}, 2000);
        QCOMPARE(text_of(window.shown()), QStringLiteral("980 to 2020"));
        window.rows_came({1000, 1030}, 1030);
        QCOMPARE(text_of(window.shown()), QStringLiteral("984.4 to 1045.6"));
        window.choose({1020, 1040});
        QCOMPARE(text_of(window.shown()), QStringLiteral("1020 to 1040"));
        window.rows_came({1000, 1100}, 1100);
        QCOMPARE(text_of(window.shown()), QStringLiteral("1080.4 to 1100.4"));
    }

    void a_chosen_window_is_kept_within_bounds() {
        TrendWindow window;
        window.rows_came({1000, 2000}, 2000);
        window.choose({0, 5000});
        QCOMPARE(text_of(window.shown()), QStringLiteral("1400 to 2600"));
        window.choose({1500, 1501});
        QCOMPARE(text_of(window.shown()), QStringLiteral("1499.5 to 1501.5"));
        window.choose({100, 200});
        QCOMPARE(text_of(window.shown()), QStringLiteral("950 to 1050"));
        window.choose({3000, 3100});
        QCOMPARE(text_of(window.shown()), QStringLiteral("1950 to 2050"));
        // Of a few rows two minutes can be looked at.
        window.rows_came({1000, 1010}, 1010);
        window.choose({0, 5000});
        QCOMPARE(text_of(window.shown()), QStringLiteral("950 to 1070"));
    }

    void the_newest_row_at_the_edge_is_still_followed_data() {
        QTest::addColumn<double>("lower");
        QTest::addColumn<double>("upper");
        QTest::addColumn<bool>("follows");
        QTest::newRow("at the right edge") << 1900.0 << 2000.0 << true;
        QTest::newRow("beyond the right edge") << 1899.0 << 1999.0 << false;
        QTest::newRow("at the left edge") << 2000.0 << 2100.0 << true;
        QTest::newRow("beyond the left edge") << 2001.0 << 2101.0 << false;
    }
    void the_newest_row_at_the_edge_is_still_followed() {
        QFETCH(double, lower);
        QFETCH(double, upper);
        TrendWindow window;
        // The clock was set back: the newest row is not the latest.
        window.rows_came({1000, 3000}, 2000);
        window.choose({lower, upper});
        QTEST(window.follows(), "follows");
    }

    void a_limit_is_shown_up_to_six_times_the_values_away_data() {
        QTest::addColumn<double>("lower");
        QTest::addColumn<double>("upper");
        QTest::addColumn<QString>("axis");
        // The values alone are 40 to 70; there is room of 8 % on either side.
        QTest::newRow("both near") << 30.0 << 80.0 << "26 to 84";
        QTest::newRow("within the values") << 45.0 << 60.0 << "37.6 to 72.4";
        QTest::newRow("lower as far as can be") << -110.0 << 60.0 << "-124.4 to 84.4";
        QTest::newRow("lower too far") << -110.5 << 80.0 << "36.8 to 83.2";
        QTest::newRow("upper as far as can be") << 50.0 << 220.0 << "25.6 to 234.4";
        QTest::newRow("upper too far") << 30.0 << 220.5 << "26.8 to 73.2";
        QTest::newRow("both too far") << -999.0 << 999.0 << "37.6 to 72.4";
    }
    void a_limit_is_shown_up_to_six_times_the_values_away() {
        QFETCH(double, lower);
        QFETCH(double, upper);
        const TrendRange axis =
            value_axis(measurement::Quantity::level, TrendRange{40, 70}, TrendRange{lower, upper});
        QTEST(text_of(axis), "axis");
    }
};

}  // namespace m47::trend

QTEST_GUILESS_MAIN(m47::trend::TrendBlockTest)
#include "trend_block_test.moc"
