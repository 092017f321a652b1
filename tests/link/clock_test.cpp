// SPDX-License-Identifier: GPL-3.0-or-later
#include <QElapsedTimer>
#include <QTest>
#include <cmath>

#include "clock_tick.h"
#include "real_clock.h"
#include "virtual_clock.h"

namespace m47::link {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

class ClockTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void the_tick_is_that_of_single_precision();
    void readings_are_whole_ticks_and_never_ahead();
    void a_real_reading_moves_on_at_the_tick();
    void sleep_is_exact();
    void a_span_counts_on_past_midnight();
    void a_clock_set_within_a_span_disturbs_nothing();
    void a_pause_over_midnight_outside_a_span_wraps();
    void the_local_time_of_day();
    void a_virtual_clock_stands_still_and_wraps();
};

void ClockTest::the_tick_is_that_of_single_precision() {
    QCOMPARE(clock_tick(0ns), nanoseconds(1'953'125));
    QCOMPARE(clock_tick(4h), nanoseconds(1'953'125));
    QCOMPARE(clock_tick(9h), nanoseconds(1'953'125));
    QCOMPARE(clock_tick(10h), nanoseconds(3'906'250));
    QCOMPARE(clock_tick(18h), nanoseconds(3'906'250));
    QCOMPARE(clock_tick(19h), nanoseconds(7'812'500));
    QCOMPARE(clock_tick(25h), nanoseconds(7'812'500));
    for (const int seconds : {16384, 30000, 32767, 32768, 50000, 65535, 65536, 86399, 131072}) {
        const float reading = static_cast<float>(seconds);
        const float step = std::nextafter(reading, 1e9F) - reading;
        QCOMPARE(std::chrono::duration<float>(clock_tick(std::chrono::seconds(seconds))).count(),
                 step);
    }
}

void ClockTest::readings_are_whole_ticks_and_never_ahead() {
    for (nanoseconds time = 0ns; time < 30h; time += 777'777'777ns) {
        const double reading = static_cast<double>(tick_reading(time));
        const double tick = std::chrono::duration<double>(clock_tick(time)).count();
        const double exact = std::chrono::duration<double>(time).count();
        QVERIFY(reading <= exact && reading > exact - tick);
        QCOMPARE(std::fmod(reading, tick), 0.0);
        QVERIFY(time_to_next_tick(time) > 0ns);
        QVERIFY(tick_reading(time + time_to_next_tick(time)) > tick_reading(time));
        QCOMPARE(tick_reading(time + time_to_next_tick(time) - 1ns), tick_reading(time));
    }
}

void ClockTest::a_real_reading_moves_on_at_the_tick() {
    RealClock clock([] { return nanoseconds(10h); });
    const ClockSpan span(clock);
    QElapsedTimer timer;
    timer.start();
    constexpr int kTicks = 50;
    const float start = clock.now();
    for (int i = 0; i < kTicks; ++i) {
        const float before = clock.now();
        clock.sleep(clock.until_next_tick());
        QVERIFY(clock.now() > before);
    }
    const double passed = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    QVERIFY(clock.now() - start >= kTicks / 256.0F);
    QVERIFY(passed > (kTicks - 1) / 256.0);
}

void ClockTest::sleep_is_exact() {
    RealClock clock;
    for (const double seconds : {0.0, 0.001, 0.02, 1.02}) {
        QElapsedTimer timer;
        timer.start();
        clock.sleep(seconds);
        const double took = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
        QVERIFY(took >= seconds);
        QVERIFY2(took < seconds + 0.9, qPrintable(QString::number(took)));
    }
    QElapsedTimer timer;
    timer.start();
    clock.sleep(-1);
    QVERIFY(timer.elapsed() < 1000);
}

void ClockTest::a_span_counts_on_past_midnight() {
    RealClock clock([] { return nanoseconds(24h) - 20ms; });
    const ClockSpan outer(clock);
    const float start = clock.now();
    QVERIFY(start < 86400.0F);
    {
        const ClockSpan inner(clock);
        clock.sleep(0.05);
    }
    QVERIFY(clock.now() > 86400.0F);
    QVERIFY(clock.now() - start >= 0.04F);
}

void ClockTest::a_clock_set_within_a_span_disturbs_nothing() {
    nanoseconds time_of_day = 10h;
    RealClock clock([&] { return time_of_day; });
    {
        const ClockSpan outer(clock);
        const float start = clock.now();
        time_of_day = 3h;
        const ClockSpan inner(clock);
        QVERIFY(clock.now() >= start);
        QVERIFY(clock.now() < start + 60.0F);
    }
    QCOMPARE(clock.now(), 3 * 3600.0F);
}

void ClockTest::a_pause_over_midnight_outside_a_span_wraps() {
    nanoseconds time_of_day = nanoseconds(24h) - 1ms;
    RealClock clock([&] { return time_of_day; });
    QVERIFY(clock.now() > 86399.9F);
    time_of_day = 5ms;
    QCOMPARE(clock.now(), 2 / 512.0F);
}

void ClockTest::the_local_time_of_day() {
    const QTime before = QTime::currentTime();
    const qint64 time =
        std::chrono::duration_cast<std::chrono::milliseconds>(platform::local_time_of_day())
            .count();
    const QTime after = QTime::currentTime();
    if (after < before) QSKIP("midnight has just passed");
    QVERIFY(time >= before.msecsSinceStartOfDay() && time <= after.msecsSinceStartOfDay());
    QVERIFY(std::abs(RealClock().date_time().secsTo(QDateTime::currentDateTime())) <= 1);
}

void ClockTest::a_virtual_clock_stands_still_and_wraps() {
    VirtualClock clock(86399.0);
    QCOMPARE(clock.now(), 86399.0F);
    QCOMPARE(clock.now(), 86399.0F);
    const QDate day = clock.date_time().date();
    clock.sleep(1.5);
    QCOMPARE(clock.now(), 0.5F);
    QCOMPARE(clock.elapsed(), 1.5);
    QCOMPARE(clock.date_time(), QDateTime(day.addDays(1), QTime(0, 0, 0, 500)));
    clock.sleep(86400 - 1.0);
    QCOMPARE(clock.now(), 86399.5F);
    for (int i = 0; i < 1000; ++i) {
        const float before = clock.now();
        clock.sleep(clock.until_next_tick());
        QVERIFY(clock.now() != before);
    }
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::ClockTest)
#include "clock_test.moc"
