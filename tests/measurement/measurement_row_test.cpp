// SPDX-License-Identifier: GPL-3.0-or-later
#include "measurement_row.h"

#include <QTest>

namespace m47::measurement {
namespace {

MeasurementTexts everything_shown(int meas_mode) {
    return {QDateTime({2006, 2, 1}, {15, 4, 9}),
            meas_mode,
            QStringLiteral(" 11727.5 "),
            QStringLiteral("10600"),
            QStringLiteral(" <30 "),
            QStringLiteral("2.0E-4"),
            QStringLiteral(" <1.0E-8"),
            QStringLiteral("1.25"),
            QStringLiteral(">20 "),
            QStringLiteral(" 3 4"),
            QStringLiteral("PASS")};
}

}  // namespace

class MeasurementRowTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void rows_by_mode_data() {
        QTest::addColumn<int>("meas_mode");
        QTest::addColumn<QString>("expected");
        QTest::newRow("digital")
            << 3 << "01/02/06|15:04:09|11727.5|10600|<30|2.0E-4|<1.0E-8|1.25|>20|3 4|PASS";
        QTest::newRow("analog") << 2 << "01/02/06|15:04:09|11727.5|10600|<30||||||PASS";
        QTest::newRow("mode 0") << 0 << "01/02/06|15:04:09|||||||||PASS";
        QTest::newRow("mode 1") << 1 << "01/02/06|15:04:09|||||||||PASS";
        QTest::newRow("mode 4") << 4 << "01/02/06|15:04:09|||||||||PASS";
    }

    void rows_by_mode() {
        QFETCH(int, meas_mode);
        QFETCH(QString, expected);
        const QStringList cells = measurement_row(everything_shown(meas_mode));
        QCOMPARE(cells.size(), 11);
        QCOMPARE(cells.join(u'|'), expected);
    }

    void blank_labels_and_no_status_are_empty_cells() {
        MeasurementTexts shown;
        shown.date_time = QDateTime({2026, 12, 31}, {0, 0, 0});
        shown.meas_mode = 3;
        shown.mer = QStringLiteral("   ");
        const QString expected = QStringLiteral("31/12/26|00:00:00|||||||||");
        QCOMPARE(measurement_row(shown).join(u'|'), expected);
    }

    void the_system_language_does_not_change_date_and_time() {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German));
        const QStringList cells = measurement_row(everything_shown(2));
        QLocale::setDefault(before);
        QCOMPARE(cells[0], QStringLiteral("01/02/06"));
        QCOMPARE(cells[1], QStringLiteral("15:04:09"));
    }
};

}  // namespace m47::measurement

QTEST_GUILESS_MAIN(m47::measurement::MeasurementRowTest)
#include "measurement_row_test.moc"
