// SPDX-License-Identifier: GPL-3.0-or-later
#include "alarm_limits.h"

#include <QLocale>
#include <QMap>
#include <QTest>
#include <algorithm>

namespace m47::realtime {
namespace {

/// Where a row's limits stand in the panel.
struct RowFields {
    const char* name;
    AlarmRow row;
    QString RealtimePanel::*minimum;
    QString RealtimePanel::*maximum;
};

const RowFields kRows[] = {
    {"DCP level", AlarmRow::dcp_level, &RealtimePanel::lev_mind, &RealtimePanel::lev_maxd},
    {"C/N digital", AlarmRow::cn_digital, &RealtimePanel::cn_mind, &RealtimePanel::cn_maxd},
    {"CHBER", AlarmRow::chber, &RealtimePanel::chber_mind, &RealtimePanel::chber_maxd},
    {"MER", AlarmRow::mer, &RealtimePanel::mer_mind, &RealtimePanel::mer_maxd},
    {"level analog", AlarmRow::level_analog, &RealtimePanel::lev_mina, &RealtimePanel::lev_maxa},
    {"C/N analog", AlarmRow::cn_analog, &RealtimePanel::cn_mina, &RealtimePanel::cn_maxa},
};

void tick_alarm(RealtimePanel& panel, std::size_t lamp) {
    if (lamp < 4)
        panel.alarm_stated[lamp] = true;
    else
        panel.alarm_statea[lamp - 4] = true;
}

}  // namespace

class AlarmLimitsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void value_and_limits_data();
    void value_and_limits();
    void each_row_has_its_own_box_fields_and_lamp();
    void unticked_row_is_left_alone();
    void a_failure_stays_raised();
    void the_default_error_rate_limits();
    void a_comma_in_a_limit();
    void clamp_data();
    void clamp();
    void clamping_leaves_the_other_limits();
    void any_measure_counts();
    void any_alarm_counts();
    void keys();
};

void AlarmLimitsTest::value_and_limits_data() {
    QTest::addColumn<QString>("minimum");
    QTest::addColumn<QString>("maximum");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("failed");
    QTest::newRow("inside") << "30"
                            << "80" << 50.0 << false;
    QTest::newRow("below") << "30"
                           << "80" << 29.9 << true;
    QTest::newRow("equal to the minimum") << "30"
                                          << "80" << 30.0 << true;
    QTest::newRow("just above the minimum") << "30"
                                            << "80" << 30.1 << false;
    QTest::newRow("just below the maximum") << "30"
                                            << "80" << 79.9 << false;
    QTest::newRow("equal to the maximum") << "30"
                                          << "80" << 80.0 << true;
    QTest::newRow("above") << "30"
                           << "80" << 80.1 << true;
    QTest::newRow("crossed, between") << "80"
                                      << "30" << 50.0 << true;
    QTest::newRow("crossed, below") << "80"
                                    << "30" << 10.0 << true;
    QTest::newRow("crossed, above") << "80"
                                    << "30" << 90.0 << true;
    QTest::newRow("both the same") << "30"
                                   << "30" << 30.0 << true;
    QTest::newRow("negative") << "-60"
                              << "-10" << -40.0 << false;
    QTest::newRow("exponent") << "1E-8"
                              << "3E-2" << 2.0e-4 << false;
    QTest::newRow("equal to an exponent") << "1E-8"
                                          << "3E-2" << 3.0e-2 << true;
    QTest::newRow("no number counts 0") << ""
                                        << "what" << 0.0 << true;
    QTest::newRow("no minimum") << ""
                                << "30" << 0.1 << false;
    QTest::newRow("no maximum") << "-5"
                                << "" << -0.1 << false;
    QTest::newRow("no maximum, above") << "-5"
                                       << "" << 0.1 << true;
}

void AlarmLimitsTest::value_and_limits() {
    QFETCH(QString, minimum);
    QFETCH(QString, maximum);
    QFETCH(double, value);
    QFETCH(bool, failed);
    RealtimePanel panel;
    RealtimeState state;
    panel.alarm_stated[0] = true;
    panel.lev_mind = minimum;
    panel.lev_maxd = maximum;
    check_limits(AlarmRow::dcp_level, value, panel, state);
    QCOMPARE(state.alarm_raised, failed);
    QVERIFY(panel.alarm_light[0] == (failed ? LampColour::red : LampColour::green));
}

void AlarmLimitsTest::each_row_has_its_own_box_fields_and_lamp() {
    for (std::size_t lamp = 0; lamp < std::size(kRows); ++lamp) {
        RealtimePanel panel;
        RealtimeState state;
        for (const RowFields& other : kRows) {
            panel.*other.minimum = "1000";
            panel.*other.maximum = "-1000";
        }
        tick_alarm(panel, lamp);
        panel.*kRows[lamp].minimum = "10";
        panel.*kRows[lamp].maximum = "20";
        std::array<LampColour, 6> expected{};
        for (const auto& [value, colour] :
             {std::pair{15.0, LampColour::green}, std::pair{20.0, LampColour::red},
              std::pair{10.0, LampColour::red}}) {
            check_limits(kRows[lamp].row, value, panel, state);
            expected[lamp] = colour;
            QVERIFY2(panel.alarm_light == expected, kRows[lamp].name);
        }
    }
}

void AlarmLimitsTest::unticked_row_is_left_alone() {
    for (std::size_t lamp = 0; lamp < std::size(kRows); ++lamp) {
        RealtimePanel panel;
        RealtimeState state;
        panel.*kRows[lamp].minimum = "10";
        panel.*kRows[lamp].maximum = "20";
        for (std::size_t other = 0; other < std::size(kRows); ++other)
            if (other != lamp) tick_alarm(panel, other);
        check_limits(kRows[lamp].row, 99, panel, state);
        QVERIFY(!state.alarm_raised);
        QVERIFY2((panel.alarm_light == std::array<LampColour, 6>{}), kRows[lamp].name);
    }
}

void AlarmLimitsTest::a_failure_stays_raised() {
    RealtimePanel panel;
    RealtimeState state;
    panel.alarm_stated = {true, true, true, true};
    panel.lev_maxd = panel.cn_maxd = "10";
    check_limits(AlarmRow::dcp_level, 99, panel, state);
    check_limits(AlarmRow::cn_digital, 5, panel, state);
    QVERIFY(state.alarm_raised);
    QVERIFY(panel.alarm_light[0] == LampColour::red);
    QVERIFY(panel.alarm_light[1] == LampColour::green);
}

void AlarmLimitsTest::the_default_error_rate_limits() {
    RealtimePanel panel;
    RealtimeState state;
    panel.alarm_stated[2] = true;
    check_limits(AlarmRow::chber, 2.0e-4, panel, state);
    QVERIFY(!state.alarm_raised);
    QVERIFY(panel.alarm_light[2] == LampColour::green);
}

void AlarmLimitsTest::a_comma_in_a_limit() {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Italian));
    RealtimePanel panel;
    RealtimeState state;
    panel.alarm_statea[0] = true;
    panel.lev_mina = "45,5";
    panel.lev_maxa = "46.5";
    check_limits(AlarmRow::level_analog, 45.4, panel, state);
    const LampColour below = panel.alarm_light[4];
    check_limits(AlarmRow::level_analog, 46.4, panel, state);
    const LampColour inside = panel.alarm_light[4];
    QLocale::setDefault(before);
    QVERIFY(below == LampColour::red);
    QVERIFY(inside == LampColour::green);
}

void AlarmLimitsTest::clamp_data() {
    QTest::addColumn<double>("offset");
    QTest::addColumn<QString>("minimum");
    QTest::addColumn<QString>("maximum");
    QTest::addColumn<QString>("clamped_minimum");
    QTest::addColumn<QString>("clamped_maximum");
    const auto row = [](double offset, const char* minimum, const char* maximum,
                        const char* clamped_minimum, const char* clamped_maximum) {
        QTest::addRow("-%g dB: %s to %s", offset, minimum, maximum)
            << offset << QString(minimum) << QString(maximum) << QString(clamped_minimum)
            << QString(clamped_maximum);
    };
    row(109, "-100", "40", "-89", "11");
    row(109, "-89", "11", "-89", "11");
    row(109, "12", "5", "11", "11");
    row(109, "-50", "", "-50", "");
    row(60, "-41", "61", "-40", "60");
    row(60, "-40", "60", "-40", "60");
    row(60, "70", "100", "60", "60");
    row(0, "30", "30", "30", "30");
    row(0, "31", "30", "31", "32");
    row(0, "20", "120", "20", "120");
    row(0, "19", "121", "20", "120");
    row(0, "121", "50", "120", "120");
    row(0, "120", "50", "120", "120");
    row(0, "119", "50", "119", "120");
    row(0, "119.5", "50", "119.5", "120");
    row(0, "40.5", "30", "40.5", "41.5");
    row(0, "", "", "20", "21");
    row(0, "what", "50", "20", "50");
    // A limit that needs no correction keeps its text.
    row(0, "030", "080.0", "030", "080.0");
}

void AlarmLimitsTest::clamp() {
    QFETCH(double, offset);
    QFETCH(QString, minimum);
    QFETCH(QString, maximum);
    QFETCH(QString, clamped_minimum);
    QFETCH(QString, clamped_maximum);
    RealtimePanel panel;
    panel.lev_mina = minimum;
    panel.lev_maxa = maximum;
    clamp_analog_limits(panel, offset);
    QCOMPARE(panel.lev_mina, clamped_minimum);
    QCOMPARE(panel.lev_maxa, clamped_maximum);
}

void AlarmLimitsTest::clamping_leaves_the_other_limits() {
    RealtimePanel panel;
    for (const RowFields& row : kRows) {
        panel.*row.minimum = "-5000";
        panel.*row.maximum = "5000";
    }
    clamp_analog_limits(panel, 0);
    for (const RowFields& row : kRows) {
        if (row.row == AlarmRow::level_analog) continue;
        QCOMPARE(panel.*row.minimum, QString("-5000"));
        QCOMPARE(panel.*row.maximum, QString("5000"));
    }
}

void AlarmLimitsTest::any_measure_counts() {
    RealtimePanel panel;
    QVERIFY(!measure_activestate(panel));
    for (bool& box : panel.meas_stated) {
        box = true;
        QVERIFY(measure_activestate(panel));
        box = false;
    }
    for (bool& box : panel.meas_statea) {
        box = true;
        QVERIFY(measure_activestate(panel));
        box = false;
    }
    panel.alarm_stated.fill(true);
    panel.alarm_statea.fill(true);
    QVERIFY(!measure_activestate(panel));
}

void AlarmLimitsTest::any_alarm_counts() {
    RealtimePanel panel;
    QVERIFY(!alarm_activestate(panel));
    for (bool& box : panel.alarm_stated) {
        box = true;
        QVERIFY(alarm_activestate(panel));
        box = false;
    }
    for (bool& box : panel.alarm_statea) {
        box = true;
        QVERIFY(alarm_activestate(panel));
        box = false;
    }
    panel.meas_stated.fill(true);
    panel.meas_statea.fill(true);
    QVERIFY(!alarm_activestate(panel));
}

void AlarmLimitsTest::keys() {
    const QString digits("0123456789");
    QMap<QString, QString> expected;
    for (const char* box : {"lev_maxa", "lev_maxd", "cn_mina", "cn_maxa", "cn_mind", "cn_maxd"})
        expected[box] = digits;
    for (const char* box : {"lev_mina", "lev_mind", "mer_mind", "mer_maxd"})
        expected[box] = digits + "-";
    for (const char* box : {"chber_mind", "chber_maxd"}) expected[box] = digits + "-Ee";
    QMap<QString, QString> found;
    for (const LimitBox& limit : limit_boxes()) {
        QString accepted(limit.accepted);
        std::sort(accepted.begin(), accepted.end());
        found[limit.control.name] = accepted;
    }
    for (QString& accepted : expected) std::sort(accepted.begin(), accepted.end());
    QCOMPARE(found, expected);
}

}  // namespace m47::realtime

QTEST_GUILESS_MAIN(m47::realtime::AlarmLimitsTest)
#include "alarm_limits_test.moc"
