// SPDX-License-Identifier: GPL-3.0-or-later
#include "tuning_range.h"

#include <QTest>

#include "oscillators.h"

namespace m47::programme {

class TuningRangeTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void range_data() {
        QTest::addColumn<bool>("direct");
        QTest::addColumn<double>("oscillator");
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::newRow("direct") << true << 0.0 << 920.0 << 2150.0;
        QTest::newRow("direct, oscillator ignored") << true << 10600.0 << 920.0 << 2150.0;
        QTest::newRow("10600") << false << 10600.0 << 11520.0 << 12750.0;
        QTest::newRow("9750.5") << false << 9750.5 << 10670.5 << 11900.5;
        QTest::newRow("5150") << false << 5150.0 << 3000.0 << 4230.0;
        QTest::newRow("7000 is below the band") << false << 7000.0 << 7920.0 << 9150.0;
        QTest::newRow("6999.9 is above it") << false << 6999.9 << 4849.9 << 6079.9;
        QTest::newRow("lowest") << false << kOscillatorMinimum << 920.0 << 2150.0;
        QTest::newRow("highest") << false << kOscillatorMaximum << 12920.0 << 14150.0;
        QTest::newRow("none entered") << false << 0.0 << -2150.0 << -920.0;
    }

    void range() {
        QFETCH(bool, direct);
        QFETCH(double, oscillator);
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        const TuningRange found = tuning_range(direct, oscillator);
        QCOMPARE(found.minimum, minimum);
        QCOMPARE(found.maximum, maximum);
    }

    void brought_inside_data() {
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::addColumn<double>("frequency");
        QTest::addColumn<double>("inside");
        QTest::newRow("below") << 920.0 << 2150.0 << 919.9 << 920.0;
        QTest::newRow("at the minimum") << 920.0 << 2150.0 << 920.0 << 920.0;
        QTest::newRow("inside") << 920.0 << 2150.0 << 1234.5 << 1234.5;
        QTest::newRow("at the maximum") << 920.0 << 2150.0 << 2150.0 << 2150.0;
        QTest::newRow("above") << 920.0 << 2150.0 << 2150.1 << 2150.0;
        QTest::newRow("0 below the range") << 920.0 << 2150.0 << 0.0 << 920.0;
        QTest::newRow("0 within the range") << -100.0 << 80.0 << 0.0 << 80.0;
        QTest::newRow("0 as the minimum") << 0.0 << 1230.0 << -5.0 << 1230.0;
        QTest::newRow("0 as the maximum") << -1230.0 << 0.0 << 50.0 << 0.0;
        QTest::newRow("0 above the range") << -2150.0 << -920.0 << 0.0 << -920.0;
    }

    void brought_inside() {
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        QFETCH(double, frequency);
        QFETCH(double, inside);
        QCOMPARE(inside_range(frequency, {minimum, maximum}), inside);
    }
};

}  // namespace m47::programme

QTEST_APPLESS_MAIN(m47::programme::TuningRangeTest)
#include "tuning_range_test.moc"
