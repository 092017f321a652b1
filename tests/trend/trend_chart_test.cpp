// SPDX-License-Identifier: GPL-3.0-or-later
// What a chart and a table show of a series.
#include "trend_test.h"

namespace m47::trend {

void TrendTest::dense_points_keep_extremes_gaps_and_failures() {
    measurement::PageStore page;
    Cells cells;
    constexpr int kRows = 20000;
    for (int k = 0; k < kRows; ++k) {
        cells.time = clock_text(k);
        cells.lev = QString::number(50 + k % 3);
        cells.status = QStringLiteral("PASS");
        if (k == 7000) cells.lev = QStringLiteral("99");
        if (k == 9000) cells.lev = QStringLiteral("7");
        if (k == 9000) cells.status = QStringLiteral("FAIL");
        if (k == 12345) cells.lev = QString();
        page.append(row(cells));
    }
    const TrendData data = data_of(page);
    const TrendSamples samples = all_of(data, measurement::Quantity::level, 100);
    QVERIFY(samples.dense);
    QVERIFY2(samples.line.size() <= 4 * 102, qPrintable(QString::number(samples.line.size())));
    const QStringList texts = drawn(samples.line).split(u' ');
    QCOMPARE(texts.count(QStringLiteral("99")), 1);
    QCOMPARE(texts.count(QStringLiteral("7")), 1);
    QCOMPARE(texts.count(QStringLiteral("|")), 1);
    QCOMPARE(drawn(samples.failed), QStringLiteral("7"));
    QCOMPARE(samples.values->lower, 7.0);
    QCOMPARE(samples.values->upper, 99.0);
    for (std::size_t k = 1; k < samples.line.size(); ++k)
        QVERIFY(samples.line[k - 1].time <= samples.line[k].time);
}

void TrendTest::every_second_row_empty_leaves_no_line_at_all() {
    measurement::PageStore page;
    Cells cells;
    for (int k = 0; k < 10000; ++k) {
        cells.time = clock_text(k);
        cells.lev = k % 2 == 0 ? QStringLiteral("55") : QString();
        page.append(row(cells));
    }
    const TrendSamples samples = all_of(data_of(page), measurement::Quantity::level, 100);
    QVERIFY(samples.line.empty());
    QVERIFY(samples.dots.size() >= 100);
}

void TrendTest::the_nearest_point_has_a_value_and_lies_within_reach() {
    const TrendData data = data_of(page_of_levels({"50", "", "<52", "53"}));
    const TrendSeries& series = *data.series()[0];
    const double start = data.time().lower;
    const auto nearest = [&](double seconds, double reach) {
        const auto point =
            nearest_point(series, measurement::Quantity::level, start + seconds, reach);
        return point ? measurement::reading_text(measurement::Quantity::level,
                                                 point->reading(measurement::Quantity::level))
                     : QString();
    };
    QCOMPARE(nearest(0, 5), QStringLiteral("50.0"));
    QCOMPARE(nearest(9, 5), QString());
    QCOMPARE(nearest(9, 10), QStringLiteral("50.0"));
    QCOMPARE(nearest(11, 12), QStringLiteral("<52.0"));
    QCOMPARE(nearest(24, 100), QStringLiteral("<52.0"));
    QCOMPARE(nearest(26, 100), QStringLiteral("53.0"));
    QCOMPARE(nearest(1000, 100), QString());
}

void TrendTest::only_what_is_in_sight_is_sampled_with_its_neighbours() {
    QStringList levels;
    for (int k = 0; k < 100; ++k) levels << QString::number(k);
    const TrendData data = data_of(page_of_levels(levels));
    const double start = data.time().lower;
    const TrendSamples samples = sample_trend(*data.series()[0], measurement::Quantity::level,
                                              {start + 305, start + 335}, 1000);
    QCOMPARE(drawn(samples.line), QStringLiteral("30 31 32 33 34"));
    QCOMPARE(samples.values->lower, 31.0);
    QCOMPARE(samples.values->upper, 33.0);
}

void TrendTest::the_value_axis_shows_limits_but_never_presses_the_values_flat() {
    const TrendRange values{55, 60};
    const TrendRange near = value_axis(measurement::Quantity::level, values, TrendRange{40, 80});
    QVERIFY(near.lower < 40 && near.upper > 80);
    const TrendRange far = value_axis(measurement::Quantity::level, values, TrendRange{0, 9999});
    QVERIFY(far.upper < 100);
    const TrendRange flat = value_axis(measurement::Quantity::mer, TrendRange{12, 12}, {});
    QVERIFY(flat.span() >= 5);
    QVERIFY(flat.lower < 12 && flat.upper > 12);
    const TrendRange zero =
        value_axis(measurement::Quantity::ber, TrendRange{1e-6, 1e-5}, TrendRange{0, 1});
    // A side without a limit has no place.
    constexpr double kOpen = std::numeric_limits<double>::infinity();
    const TrendRange above =
        value_axis(measurement::Quantity::level, values, TrendRange{40, kOpen});
    QVERIFY(above.lower < 40);
    QVERIFY(above.upper < 80);
    QVERIFY(zero.lower > 0 && std::isfinite(zero.upper));
}

void TrendTest::the_value_axis_has_its_room_and_its_shortest_length_data() {
    QTest::addColumn<int>("quantity");
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    const auto row = [](const char* name, measurement::Quantity quantity,
                        const QList<double>& values, double lower, double upper) {
        QTest::newRow(name) << static_cast<int>(quantity) << values << lower << upper;
    };
    row("no level", measurement::Quantity::level, {}, 12, 128);
    row("one level", measurement::Quantity::level, {50, 50}, 44.2, 55.8);
    row("levels far apart", measurement::Quantity::level, {40, 70}, 37.6, 72.4);
    row("no MER", measurement::Quantity::mer, {}, -2.4, 32.4);
    row("one MER", measurement::Quantity::mer, {10, 10}, 7.1, 12.9);
    row("no error rate", measurement::Quantity::ber, {}, std::pow(10, -9.64), std::pow(10, -0.36));
    row("one error rate", measurement::Quantity::ber, {1e-4, 1e-4}, std::pow(10, -5.16),
        std::pow(10, -2.84));
}

void TrendTest::the_value_axis_has_its_room_and_its_shortest_length() {
    QFETCH(int, quantity);
    QFETCH(QList<double>, values);
    std::optional<TrendRange> in_sight;
    if (!values.isEmpty()) in_sight = TrendRange{values[0], values[1]};
    const TrendRange axis = value_axis(static_cast<measurement::Quantity>(quantity), in_sight, {});
    QTEST(axis.lower, "lower");
    QTEST(axis.upper, "upper");
}

void TrendTest::the_window_shows_all_until_the_user_zooms_and_follows_the_newest_row() {
    TrendWindow window;
    window.rows_came({1000, 2000}, 2000);
    QVERIFY(window.shown().lower < 1000 && window.shown().upper > 2000);
    window.rows_came({1000, 3000}, 3000);
    QVERIFY(window.shown().upper > 3000);
    window.choose({2900, 3010});
    QVERIFY(window.follows());
    window.rows_came({1000, 3100}, 3100);
    QCOMPARE(window.shown().span(), 110.0);
    QVERIFY(window.shown().upper > 3100 && window.shown().lower > 2900);
    window.choose({1500, 1600});
    QVERIFY(!window.follows());
    window.rows_came({1000, 3200}, 3200);
    QCOMPARE(window.shown().lower, 1500.0);
    window.set_follows(true);
    QVERIFY(window.shown().upper > 3200);
    QCOMPARE(window.shown().span(), 100.0);
    window.reset();
    QVERIFY(window.shown().lower < 1000 && window.shown().upper > 3200);
}

void TrendTest::a_window_that_does_not_follow_stands_still() {
    TrendWindow window;
    window.set_follows(false);
    window.rows_came({1000, 2000}, 2000);
    const TrendRange before = window.shown();
    window.rows_came({1000, 9000}, 9000);
    QCOMPARE(window.shown().upper, before.upper);
}

void TrendTest::zooming_stays_within_what_can_be_shown() {
    TrendWindow window;
    window.rows_came({1000, 2000}, 2000);
    window.choose({1500, 1500.001});
    QVERIFY(window.shown().span() >= 2);
    window.choose({-1e12, 1e12});
    QCOMPARE(window.shown().span(), 1200.0);
    window.choose({1e9, 1e9 + 100});
    QVERIFY(window.shown().lower <= 2000);
}

void TrendTest::one_row_alone_has_a_minute_around_it() {
    TrendWindow window;
    window.rows_came({1000, 1000}, 1000);
    QCOMPARE(window.shown().span(), 60.0);
}

void TrendTest::the_table_holds_every_row_and_leaves_gaps_empty() {
    measurement::PageStore page;
    Cells cells;
    cells.ber = QStringLiteral("<1.0E-8");
    cells.status = QStringLiteral("PASS");
    page.append(row(cells));
    cells.fr = QStringLiteral("950.5");
    cells.osc = QString();
    cells.lev = QStringLiteral(">99.5");
    page.append(row(cells));
    cells = {};
    cells.time = QStringLiteral("10:00:10");
    cells.lev = cells.mer = QString();
    cells.status = QStringLiteral("FAIL");
    page.append(row(cells));
    const TrendData data = data_of(page);
    std::vector<const TrendSeries*> series;
    for (const auto& each : data.series()) series.push_back(each.get());
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(write_trend_table(buffer, series));
    QCOMPARE(buffer.data(),
             QByteArray("TIME\tPROGRAM\tLEV\tBER\tMER\tSTATUS\tMARKS\tUNIT\n"
                        "2026-11-21 10:00:00\t11778.0 / 10600\t58.3\t1e-08\t14.2\tPASS\tBER<\t\n"
                        "2026-11-21 10:00:10\t11778.0 / 10600\t\t2e-04\t\tFAIL\t\t\n"
                        "2026-11-21 10:00:00\t950.5\t99.5\t1e-08\t14.2\tPASS\tLEV> BER<\t\n"));
}

void TrendTest::a_long_table_that_cannot_be_written_says_so() {
    QStringList levels;
    for (int k = 0; k < 8000; ++k) levels += QString::number(k % 90);
    const TrendData data = data_of(page_of_levels(levels));
    const std::vector<const TrendSeries*> series{data.series()[0].get()};
    QFile full(QStringLiteral("/dev/full"));
    QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QVERIFY(!write_trend_table(full, series));
    QBuffer room;
    QVERIFY(room.open(QIODevice::WriteOnly));
    QVERIFY(write_trend_table(room, series));
    QCOMPARE(room.data().count('\n'), 8001);
}

void TrendTest::a_table_that_cannot_be_written_says_so() {
    const TrendData data = data_of(page_of_levels({QStringLiteral("1")}));
    const std::vector<const TrendSeries*> series{data.series()[0].get()};
    QFile full(QStringLiteral("/dev/full"));
    QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QVERIFY(!write_trend_table(full, series));
}

}  // namespace m47::trend
