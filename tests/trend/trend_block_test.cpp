// SPDX-License-Identifier: GPL-3.0-or-later
// What is summed up in blocks is drawn as if every point had been looked at.
#include <QRandomGenerator>
#include <QTest>
#include <bit>

#include "trend_sampling.h"

namespace m47 {
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
        if (one_in(40)) point.status = Verdict::fail;
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
        TrendSeries summed(SeriesKey{});
        TrendSeries plain(SeriesKey{});
        for (const TrendPoint& point : random_points(seed)) {
            summed.add(point);
            plain.add(point);
        }
        summed.settle();
        QCOMPARE(summed.blocks().size(), std::size_t{kPoints / TrendBlock::kPoints});
        QVERIFY(plain.blocks().empty());
        const double begin = plain.points().front().time;
        const double length = plain.points().back().time - begin;
        for (const Quantity quantity : kQuantities) {
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
        TrendSeries twice(SeriesKey{});
        TrendSeries once(SeriesKey{});
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
        for (const Quantity quantity : kQuantities) {
            const TrendSamples one = sample_trend(twice, quantity, all, 100);
            const TrendSamples other = sample_trend(once, quantity, all, 100);
            QVERIFY(same(one.line, other.line));
            QVERIFY(same(one.failed, other.failed));
        }
    }
};

}  // namespace m47

QTEST_GUILESS_MAIN(m47::TrendBlockTest)
#include "trend_block_test.moc"
