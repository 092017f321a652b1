// SPDX-License-Identifier: GPL-3.0-or-later
#include "measure_cycle.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include "realtime_fixture.h"
#include "row_time.h"

namespace m47 {
namespace {

const QByteArray kQpskLines("CHBER : 2.0E-4\rPvBER : <1.0E-8\rCFO   : 1.25\rMER   : 12.3");
const QString kEight(8, u' ');
const QString kSix(6, u' ');

std::array<LampColour, 6> lamps(std::initializer_list<std::pair<std::size_t, LampColour>> lit) {
    std::array<LampColour, 6> all{};
    for (const auto& [lamp, colour] : lit) all[lamp] = colour;
    return all;
}

}  // namespace

/// Whole measurements: what goes to the meter, what the panel shows, what is kept of it.
class MeasureCycleTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup() { f_.reset(); }

    void analog_measurement();
    void digital_measurement();
    void digital_measurement_in_another_unit_data();
    void digital_measurement_in_another_unit();
    void complete_digital_measurement();
    void complete_analog_measurement();
    void without_a_link_only_the_lamps_go_out();
    void with_no_measure_ticked_only_the_lamps_go_out();
    void results_are_blanked_first();
    void limits_are_clamped_by_the_unit_data();
    void limits_are_clamped_by_the_unit();
    void a_level_equal_to_both_limits_fails();
    void an_alarm_without_limits_checks_nothing_where_chosen();
    void an_alarm_with_one_limit_checks_that_one_where_chosen();
    void a_cycle_that_ends_at_the_noise_is_told();
    void an_alarm_without_limits_is_told();
    void digital_cn_ends_the_cycle();
    void digital_noise_ends_the_cycle();
    void analog_cn_ends_the_cycle();
    void analog_noise_ends_the_cycle();
    void qpsk_label_missing_ends_the_cycle_data();
    void qpsk_label_missing_ends_the_cycle();
    void other_measures_decide_whether_there_is_a_cycle();
    void error_rates_that_start_nothing();
    void status_data();
    void status();
    void each_cycle_starts_anew();
    void row_of_the_mode_and_cycle_of_the_frame();
    void row_of_another_mode();
    void each_row_is_announced();
    void what_was_sent_and_answered_is_kept_beside_the_row();
    void the_digital_level_is_kept_though_the_row_is_analog();
    void the_limits_that_were_checked_are_kept();
    void complete_measures_are_kept();
    void a_unit_that_was_lost_on_its_way_is_not_known();
    void log_grows_by_one_line_a_measurement();
    void log_that_cannot_be_written_loses_its_line();
    void link_lost_within_the_wait();
    void link_lost_at_any_moment();
    void a_refused_command_loses_the_link();
    void the_end_of_the_program_passes_through_data();
    void the_end_of_the_program_passes_through();
    void measures_that_run_to_their_end();

  private:
    RealtimePanel& panel() { return f_->panel(); }
    RealtimeState& state() { return f_->state(); }
    PageModel& page() { return f_->rules.page; }

    void measure_and_store() {
        f_->rules.cycle.measure();
        f_->rules.cycle.storemeas();
    }
    void show_digital() {
        panel().satdigmea_visible = true;
        state().meas_mode = kDigitalMode;
    }
    void tick(std::initializer_list<DigitalMeasure> measures) {
        for (const DigitalMeasure measure : measures) panel().meas_stated[measure] = true;
    }
    /// Row `row` of the page, its cells separated by "|".
    QString row(int number = 0) {
        QStringList cells;
        for (int column = 0; column < PageStore::kColumns; ++column)
            cells += page().index(number, column).data().toString();
        return cells.join(u'|');
    }
    /// The cells of `row` behind date and time.
    QString results(int number = 0) { return row(number).section(u'|', 2); }
    QByteArray log_bytes() {
        QFile file(f_->path("day.log"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }

    std::unique_ptr<RealtimeFixture> f_;
};

void MeasureCycleTest::init() {
    f_ = std::make_unique<RealtimeFixture>();
    f_->values["ATTEN?"] = "2";
    f_->values["LEVANL?"] = "L 58.3";
    f_->values["LEVDCP?"] = "P 61.5";
    f_->values["BERQPSK?"] = kQpskLines;
    panel().chbws = "8";
}

void MeasureCycleTest::analog_measurement() {
    f_->rules.log.open(f_->path("day.log"), page());
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_mina = "30";
    panel().lev_maxa = "80";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 0, 0, 10}));
    QCOMPARE(panel().leva, QString("58.3"));
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::green}}));
    QCOMPARE(page().rowCount(), 2);
    QCOMPARE(row(), QString("21/11/26|10:00:01|1000.0|10600|58.3||||||PASS"));
    QCOMPARE(log_bytes(),
             QByteArray("21/11/26\t10:00:01\t1000.0\t10600\t58.3\t\t\t\t\t\tPASS\r\n"));
}

void MeasureCycleTest::digital_measurement() {
    f_->rules.log.open(f_->path("day.log"), page());
    show_digital();
    tick({kDcpLevel, kChber, kPvBer, kCfo, kMer, kRu});
    panel().alarm_stated.fill(true);
    panel().lev_mind = "30";
    panel().lev_maxd = "80";
    panel().mer_mind = "13";
    panel().mer_maxd = "20";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?", "FREQ 1000.0", "ATTEN 00",
                                          "SYMBRATEQPSK 27500", "BERQPSK", "BERQPSK?", "MEASURE"}));
    QCOMPARE(f_->pauses(), (QList<int>{0, 0, 0, 0, 10, 0, 0, 0, 0, 0, 0, 50, 0}));
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(panel().cndlev, kEight);
    QCOMPARE(panel().noisedlev, kEight);
    QCOMPARE(panel().rucomune, kSix);
    QVERIFY(panel().alarm_light ==
            lamps({{0, LampColour::green}, {2, LampColour::green}, {3, LampColour::red}}));
    QCOMPARE(row(), QString("21/11/26|10:00:06|1000.0|10600|61.5|2.0E-4|<1.0E-8|1.25|12.3||FAIL"));
    QCOMPARE(log_bytes(), QByteArray("21/11/26\t10:00:06\t1000.0\t10600\t61.5\t2.0E-4\t<1.0E-8\t"
                                     "1.25\t12.3\t\tFAIL\r\n"));
}

void MeasureCycleTest::digital_measurement_in_another_unit_data() {
    QTest::addColumn<int>("unit");
    QTest::newRow("dBmV") << 1;
    QTest::newRow("dBm") << 2;
}

void MeasureCycleTest::digital_measurement_in_another_unit() {
    QFETCH(int, unit);
    f_->rules.modes.cmdlev_Click(unit);
    f_->commands();
    show_digital();
    tick({kDcpLevel});
    f_->values["LEVANL?"] = "L 80.1";
    f_->values["LEVDCP?"] = "P -47.5";
    measure_and_store();
    QCOMPARE(f_->commands(),
             (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "UNIT 00", "ATTEN?",
                          "LEVANL?", "ATTEN 3", QString("UNIT 0%1").arg(unit), "LEVDCP?"}));
    QCOMPARE(results(), QString("1000.0|10600|-47.5||||||"));
    QCOMPARE(f_->program.unit_index, unit);
}

void MeasureCycleTest::complete_digital_measurement() {
    f_->values["LEVCND?"] = " 12.5";
    f_->raw["LEVDCP?1100.0"] = "LEVDCP?1100.0\rDCP28.3\rOK\r";
    f_->program.corrected.complete = true;
    panel().noise_freqd = "1100";
    show_digital();
    panel().meas_stated.fill(true);
    panel().alarm_stated.fill(true);
    panel().lev_mind = panel().cn_mind = panel().mer_mind = "5";
    panel().lev_maxd = panel().cn_maxd = panel().mer_maxd = "80";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08",
                                          // channel power
                                          "ATTEN 6", "ATTEN?", "LEVANL?", "LEVDCP?",
                                          // C/N
                                          "ATTEN 6", "MARKER 1 1", "LEVCND?",
                                          // noise
                                          "FREQ 1100.0", "ATTEN 6", "ATTEN?", "LEVANL?",
                                          "LEVDCP?1100.0", "FREQ 1000.0",
                                          // QPSK
                                          "FREQ 1000.0", "ATTEN 00", "SYMBRATEQPSK 27500",
                                          "BERQPSK", "BERQPSK?", "MEASURE"}));
    QCOMPARE(panel().cndlev, QString("12.5"));
    QCOMPARE(panel().noisedlev, QString("28.3"));
    QVERIFY(state().cn_done);
    QVERIFY(panel().alarm_light == lamps({{0, LampColour::green},
                                          {1, LampColour::green},
                                          {2, LampColour::green},
                                          {3, LampColour::green}}));
    // C/N and noise are shown, never stored.
    QCOMPARE(results(), QString("1000.0|10600|61.5|2.0E-4|<1.0E-8|1.25|12.3||PASS"));
}

void MeasureCycleTest::complete_analog_measurement() {
    f_->values["LEVCNA?"] = "CN 12.5";
    f_->program.corrected.complete = true;
    panel().noise_freqa = "1100";
    panel().meas_statea.fill(true);
    panel().alarm_statea.fill(true);
    panel().lev_mina = "30";
    panel().lev_maxa = "80";
    panel().cn_maxa = "10";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?", "ATTEN 6",
                                          "MARKER 1 0", "LEVCNA?", "FREQ 1100.0", "LEVANL?"}));
    QCOMPARE(panel().cnalev, QString("12.5"));
    QCOMPARE(panel().noisealev, QString("L 58.3"));
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::green}, {5, LampColour::red}}));
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||FAIL"));
}

void MeasureCycleTest::without_a_link_only_the_lamps_go_out() {
    f_->link.port_connected = false;
    panel().meas_statea[kLevel] = true;
    panel().leva = "before";
    panel().lev_mina = "5";
    panel().alarm_light.fill(LampColour::red);
    state().alarm_raised = state().cn_done = true;
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({}));
    QVERIFY(!state().alarm_raised);
    QVERIFY(!state().cn_done);
    QCOMPARE(panel().leva, QString("before"));
    QCOMPARE(panel().lev_mina, QString("5"));
    QCOMPARE(page().measurements(), 0);
    QCOMPARE(f_->port.opens, 0);
}

void MeasureCycleTest::with_no_measure_ticked_only_the_lamps_go_out() {
    f_->rules.log.open(f_->path("day.log"), page());
    panel().leva = "before";
    panel().lev_mina = "5";
    panel().alarm_light.fill(LampColour::red);
    state().alarm_raised = state().cn_done = true;
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({}));
    QVERIFY(!state().alarm_raised);
    QVERIFY(!state().cn_done);
    QCOMPARE(panel().leva, QString("before"));
    QCOMPARE(panel().lev_mina, QString("5"));
    QCOMPARE(page().measurements(), 0);
    QCOMPARE(log_bytes(), QByteArray("no such file"));
    QCOMPARE(f_->port.opens, 0);
}

void MeasureCycleTest::results_are_blanked_first() {
    QString* const eight[] = {&panel().leva,   &panel().cnalev, &panel().noisealev,
                              &panel().dcplev, &panel().cndlev, &panel().noisedlev};
    QString* const six[] = {&panel().bercomune, &panel().pvbercomune, &panel().cfcomune,
                            &panel().mercomune, &panel().rucomune};
    for (QString* result : eight) *result = "before";
    for (QString* result : six) *result = "before";
    panel().meas_statea[kLevel] = true;
    bool blank_at_start = false;
    f_->on_command = [&](const QByteArray& command) {
        if (command != "MEASURE") return;
        blank_at_start = true;
        for (const QString* result : eight) blank_at_start = blank_at_start && *result == kEight;
        for (const QString* result : six) blank_at_start = blank_at_start && *result == kSix;
    };
    f_->rules.cycle.measure();
    QVERIFY(blank_at_start);
    QCOMPARE(panel().leva, QString("58.3"));
}

void MeasureCycleTest::limits_are_clamped_by_the_unit_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("minimum");
    QTest::addColumn<QString>("maximum");
    QTest::newRow("dBuV") << 0 << "20"
                          << "120";
    QTest::newRow("dBmV") << 1 << "-40"
                          << "60";
    QTest::newRow("dBm") << 2 << "-89"
                         << "11";
}

void MeasureCycleTest::limits_are_clamped_by_the_unit() {
    QFETCH(int, unit);
    QFETCH(QString, minimum);
    QFETCH(QString, maximum);
    f_->rules.modes.cmdlev_Click(unit);
    panel().meas_statea[kLevel] = true;
    panel().lev_mina = panel().lev_mind = "-100";
    panel().lev_maxa = panel().lev_maxd = "400";
    f_->rules.cycle.measure();
    QCOMPARE(panel().lev_mina, minimum);
    QCOMPARE(panel().lev_maxa, maximum);
    QCOMPARE(panel().lev_mind, QString("-100"));
    QCOMPARE(panel().lev_maxd, QString("400"));
}

void MeasureCycleTest::a_level_equal_to_both_limits_fails() {
    f_->values["LEVANL?"] = "L 30";
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_mina = panel().lev_maxa = "30";
    measure_and_store();
    QCOMPARE(panel().lev_mina, QString("30"));
    QCOMPARE(panel().lev_maxa, QString("30"));
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::red}}));
    QCOMPARE(results(), QString("1000.0|10600|30||||||FAIL"));
}

void MeasureCycleTest::an_alarm_without_limits_checks_nothing_where_chosen() {
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    measure_and_store();
    QCOMPARE(results(0), QString("1000.0|10600|58.3||||||FAIL"));
    f_->program.corrected.empty_alarm = true;
    panel().lev_mina = " ";
    panel().lev_maxa = "";
    measure_and_store();
    QCOMPARE(panel().lev_mina, QString(" "));
    QCOMPARE(panel().lev_maxa, QString());
    QVERIFY(panel().alarm_light == lamps({}));
    QCOMPARE(results(1), QString("1000.0|10600|58.3||||||"));
    // Beside an alarm with limits the row is judged by that one.
    show_digital();
    tick({kDcpLevel, kMer, kChber});
    panel().alarm_stated = {true, false, false, true};
    panel().lev_mind = "30";
    panel().lev_maxd = "80";
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({{0, LampColour::green}}));
    QVERIFY(results(2).endsWith("|PASS"));
}

void MeasureCycleTest::an_alarm_with_one_limit_checks_that_one_where_chosen() {
    f_->program.corrected.empty_alarm = true;
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"60", "", "FAIL"}, {"50", "", "PASS"}, {"", "60", "PASS"}, {"", "50", "FAIL"}};
    int number = 0;
    for (const auto& [minimum, maximum, verdict] : cases) {
        panel().lev_mina = minimum;
        panel().lev_maxa = maximum;
        measure_and_store();
        QCOMPARE(results(number++).section(u'|', -1), QString(verdict));
        QCOMPARE(panel().lev_mina, QString(minimum));
        QCOMPARE(panel().lev_maxa, QString(maximum));
    }
}

void MeasureCycleTest::a_cycle_that_ends_at_the_noise_is_told() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    panel().meas_statea[kLevel] = true;
    f_->rules.measure_once();
    QCOMPARE(told, QStringList());
    panel().meas_statea[kCnAnalog] = true;
    f_->values["LEVCNA?"] = "CN 30.0";
    for (int time = 0; time < 2; ++time) {
        f_->rules.measure_once();
        QCOMPARE(told, QStringList("C/N and noise not measured: tick Complete C/N and noise, or "
                                   "untick them"));
    }
    told.clear();
    f_->program.corrected.complete = true;
    f_->rules.measure_once();
    QCOMPARE(told, QStringList());
}

void MeasureCycleTest::an_alarm_without_limits_is_told() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    const QString fails("An alarm without limits fails: give it limits");
    const QString nothing("An alarm without limits checks nothing");
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_mina = "30";
    panel().lev_maxa = "80";
    f_->rules.measure_once();
    QCOMPARE(told, QStringList());
    for (int time = 0; time < 2; ++time) {
        panel().lev_mina = panel().lev_maxa = "";
        f_->rules.measure_once();
        QCOMPARE(told, QStringList(fails));
    }
    f_->program.corrected.empty_alarm = true;
    for (int time = 0; time < 2; ++time) {
        panel().lev_mina = panel().lev_maxa = "";
        f_->rules.measure_once();
        QCOMPARE(told, QStringList({fails, nothing}));
    }
    f_->program.costs.begin_anew();
    f_->rules.measure_once();
    QCOMPARE(told, QStringList({fails, nothing, nothing}));
}

void MeasureCycleTest::digital_cn_ends_the_cycle() {
    show_digital();
    panel().meas_stated.fill(true);
    panel().alarm_stated.fill(true);
    panel().lev_maxd = "80";
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?", "ATTEN 6", "MARKER 1 1"}));
    QVERIFY(!state().cn_done);
    QVERIFY(panel().alarm_light == lamps({{0, LampColour::green}}));
    QCOMPARE(panel().bercomune, kSix);
    QCOMPARE(panel().mercomune, kSix);
    // The status speaks of the checks that ran.
    QCOMPARE(results(), QString("1000.0|10600|61.5||||||PASS"));
}

void MeasureCycleTest::digital_noise_ends_the_cycle() {
    show_digital();
    tick({kDcpLevel, kNoiseDigital, kChber, kMer});
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?"}));
    QCOMPARE(panel().noisedlev, kEight);
    QCOMPARE(panel().bercomune, kSix);
    QCOMPARE(results(), QString("1000.0|10600|61.5||||||"));
}

void MeasureCycleTest::analog_cn_ends_the_cycle() {
    panel().meas_statea.fill(true);
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?", "ATTEN 6",
                                          "MARKER 1 0"}));
    QCOMPARE(panel().cnalev, kEight);
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||"));
}

void MeasureCycleTest::analog_noise_ends_the_cycle() {
    panel().meas_statea = {true, false, true};
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(panel().noisealev, kEight);
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||"));
}

void MeasureCycleTest::qpsk_label_missing_ends_the_cycle_data() {
    QTest::addColumn<QByteArray>("missing");
    QTest::addColumn<QString>("kept");
    QTest::newRow("CHBER") << QByteArray("CHBER :") << "|||";
    QTest::newRow("PvBER") << QByteArray("PvBER :") << "2.0E-4|||";
    QTest::newRow("CFO") << QByteArray("CFO   :") << "2.0E-4|<1.0E-8||";
    QTest::newRow("MER") << QByteArray("MER   :") << "2.0E-4|<1.0E-8|1.25|";
}

void MeasureCycleTest::qpsk_label_missing_ends_the_cycle() {
    QFETCH(QByteArray, missing);
    QFETCH(QString, kept);
    f_->values["BERQPSK?"] = QByteArray(kQpskLines).replace(missing, "");
    show_digital();
    tick({kChber, kPvBer, kCfo, kMer});
    measure_and_store();
    QCOMPARE(f_->commands().last(), QString("BERQPSK?"));
    QCOMPARE(results(), QString("1000.0|10600||%1||").arg(kept));
    QVERIFY(f_->link.port_connected);
}

void MeasureCycleTest::other_measures_decide_whether_there_is_a_cycle() {
    // Ticked in the presentation that is not in force: the meter is tuned and a row written.
    panel().meas_stated[kRu] = true;
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0"}));
    QCOMPARE(results(0), QString("1000.0|10600|||||||"));
    show_digital();
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08"}));
    QCOMPARE(results(1), QString("1000.0|10600|||||||"));
}

void MeasureCycleTest::error_rates_that_start_nothing() {
    show_digital();
    tick({kPvBer, kCfo});
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "BERQPSK?"}));
    QCOMPARE(results(), QString("1000.0|10600|||<1.0E-8|1.25|||"));
}

void MeasureCycleTest::status_data() {
    QTest::addColumn<bool>("level_alarm");
    QTest::addColumn<bool>("other_alarm");
    QTest::addColumn<QString>("maximum");
    QTest::addColumn<QString>("status");
    QTest::newRow("no alarm, far outside") << false << false << "30"
                                           << "";
    QTest::newRow("within") << true << false << "80"
                            << "PASS";
    QTest::newRow("outside") << true << false << "30"
                             << "FAIL";
    QTest::newRow("alarm of a value not measured") << false << true << "30"
                                                   << "PASS";
    QTest::newRow("both, outside") << true << true << "30"
                                   << "FAIL";
}

void MeasureCycleTest::status() {
    QFETCH(bool, level_alarm);
    QFETCH(bool, other_alarm);
    QFETCH(QString, maximum);
    QFETCH(QString, status);
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = level_alarm;
    panel().alarm_stated[3] = other_alarm;
    panel().lev_mina = "25";
    panel().lev_maxa = maximum;
    measure_and_store();
    QCOMPARE(results().section(u'|', 8), status);
}

void MeasureCycleTest::each_cycle_starts_anew() {
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_mina = "30";
    panel().lev_maxa = "50";
    measure_and_store();
    // Lamps and results stay until the next cycle.
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::red}}));
    QVERIFY(state().alarm_raised);
    QCOMPARE(panel().leva, QString("58.3"));
    f_->values["LEVANL?"] = "L 40";
    measure_and_store();
    QVERIFY(panel().alarm_light == lamps({{4, LampColour::green}}));
    QCOMPARE(results(0), QString("1000.0|10600|58.3||||||FAIL"));
    QCOMPARE(results(1), QString("1000.0|10600|40||||||PASS"));
}

void MeasureCycleTest::row_of_the_mode_and_cycle_of_the_frame() {
    show_digital();
    // Coming back to the screen changes the mode, the digital frame stays.
    f_->rules.modes.Form_Activate();
    f_->commands();
    tick({kDcpLevel});
    measure_and_store();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 1000.0", "CHBW 08", "ATTEN 6", "ATTEN?",
                                          "LEVANL?", "LEVDCP?"}));
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(results(), QString("1000.0|10600|||||||"));
}

void MeasureCycleTest::row_of_another_mode() {
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    panel().lev_maxa = "80";
    state().meas_mode = 1;
    measure_and_store();
    QCOMPARE(row(), QString("21/11/26|10:00:01|||||||||PASS"));
}

void MeasureCycleTest::each_row_is_announced() {
    QList<QStringList> rows;
    int log_writes = 0;
    f_->rules.cycle.on_row = [&](const QStringList& cells) { rows += cells; };
    f_->rules.cycle.on_log_written = [&](const QString&) { ++log_writes; };
    panel().meas_statea[kLevel] = true;
    measure_and_store();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].join(u'|'), row());
    QCOMPARE(log_writes, 0);
}

void MeasureCycleTest::what_was_sent_and_answered_is_kept_beside_the_row() {
    Measurement told;
    f_->rules.cycle.on_measured = [&](const Measurement& measurement) { told = measurement; };
    panel().meas_statea[kLevel] = true;
    // The unit of the meter is not known before it was told or asked, and no oscillator is in use,
    // whatever stands in the boxes.
    f_->program.unit_index = panel().cmdlev = kDbm;
    measure_and_store();
    QVERIFY(told.mode == MeasureMode::analog);
    QCOMPARE(*told.frequency, 1000.0F);
    QVERIFY(!told.oscillator && !told.unit && !told.program.known());
    QVERIFY(told.verdict == Verdict::none);
    QCOMPARE(reading_text(Quantity::level, told.reading(Quantity::level)), QString("58.3"));
    QVERIFY(!told.reading(Quantity::ber).measured());
    QCOMPARE(time_text(*told.instant), std::string("2026-11-21 10:00:01"));
    panel().locopt = {false, true};
    panel().fsat = "11778";
    f_->values["FREQ?"] = "11778";
    f_->rules.tuning.locopt_Click(1);
    f_->rules.modes.cmdlev_Click(kDbmv);
    // Typed and not confirmed: the meter knows nothing of it.
    panel().ol_freq = "9750";
    panel().fsat = "11000";
    f_->rules.cycle.measure({}, {"ASTRA", "007"});
    f_->rules.cycle.storemeas();
    QCOMPARE(*told.oscillator, 10600.0F);
    QVERIFY(told.unit == kDbmv);
    QCOMPARE(told.program.text(), QString("ASTRA 007"));
    const Measurement kept = page().store().measurement(1);
    QVERIFY(kept.oscillator == told.oscillator && kept.unit == kDbmv);
    QCOMPARE(kept.frequency, told.frequency);
    QVERIFY(kept.program == told.program);
}

void MeasureCycleTest::the_digital_level_is_kept_though_the_row_is_analog() {
    show_digital();
    f_->rules.modes.Form_Activate();
    tick({kDcpLevel});
    measure_and_store();
    QCOMPARE(results(), QString("1000.0|10600|||||||"));
    const Measurement kept = page().store().measurement(0);
    QVERIFY(kept.mode == MeasureMode::digital);
    QCOMPARE(reading_text(Quantity::level, kept.reading(Quantity::level)), QString("61.5"));
}

void MeasureCycleTest::the_limits_that_were_checked_are_kept() {
    show_digital();
    tick({kDcpLevel, kChber, kPvBer, kCfo, kMer});
    panel().alarm_stated = {true, false, false, true};
    panel().lev_mind = "30";
    panel().lev_maxd = "80";
    panel().mer_mind = "13";
    panel().mer_maxd = "20";
    measure_and_store();
    const Measurement kept = page().store().measurement(0);
    const auto limits = [&kept](Quantity quantity) {
        return kept.limits[static_cast<std::size_t>(quantity)];
    };
    QVERIFY(limits(Quantity::level) == Limits({30, 80}));
    QVERIFY(limits(Quantity::mer) == Limits({13, 20}));
    QVERIFY(!limits(Quantity::ber) && !limits(Quantity::cn));
    QVERIFY(kept.verdict == Verdict::fail);  // 12.3 is below 13
    const auto shown = [&kept](Quantity quantity) {
        return reading_text(quantity, kept.reading(quantity));
    };
    QCOMPARE(shown(Quantity::ber), QString("2.0E-4"));
    QCOMPARE(shown(Quantity::pvber), QString("<1.0E-8"));
    QCOMPARE(kept.reading(Quantity::cfo).value, 1.25F);
    QCOMPARE(shown(Quantity::mer), QString("12.3"));
}

void MeasureCycleTest::complete_measures_are_kept() {
    f_->program.corrected.complete = true;
    panel().noise_freqa = "1050.0";
    f_->values["LEVCNA?"] = "CN 12.5";
    for (auto& ticked : panel().meas_statea) ticked = true;
    measure_and_store();
    const Measurement kept = page().store().measurement(0);
    QCOMPARE(reading_text(Quantity::cn, kept.reading(Quantity::cn)), QString("12.5"));
    QCOMPARE(reading_text(Quantity::noise, kept.reading(Quantity::noise)), QString("58.3"));
    QCOMPARE(*kept.frequency, 1000.0F);  // that of the level, not of the noise beside it
}

void MeasureCycleTest::a_unit_that_was_lost_on_its_way_is_not_known() {
    show_digital();
    tick({kDcpLevel});
    f_->rules.modes.cmdlev_Click(kDbm);
    QCOMPARE(f_->link.settings.unit().value_or(-1), int(kDbm));
    f_->refuse("UNIT 00");
    measure_and_store();
    QVERIFY(!f_->link.port_connected);
    QVERIFY(!f_->link.settings.unit());
}

void MeasureCycleTest::log_grows_by_one_line_a_measurement() {
    QStringList reasons;
    f_->rules.cycle.on_log_written = [&](const QString& reason) { reasons += reason; };
    f_->rules.log.open(f_->path("day.log"), page());
    panel().meas_statea[kLevel] = true;
    f_->values["LEVANL?"] = "L <20.5";
    measure_and_store();
    const QByteArray first = log_bytes();
    QCOMPARE(first, QByteArray("21/11/26\t10:00:01\t1000.0\t10600\t<20.5\t\t\t\t\t\t\r\n"));
    f_->clock.sleep(60);
    measure_and_store();
    QCOMPARE(log_bytes(), first + "21/11/26\t10:01:02\t1000.0\t10600\t<20.5\t\t\t\t\t\t\r\n");
    f_->rules.log.close();
    measure_and_store();
    QCOMPARE(log_bytes().count('\n'), 2);
    QCOMPARE(page().measurements(), 3);
    QCOMPARE(reasons, (QStringList{QString(), QString()}));
}

void MeasureCycleTest::log_that_cannot_be_written_loses_its_line() {
    QStringList reasons;
    f_->rules.cycle.on_log_written = [&](const QString& reason) { reasons += reason; };
    QVERIFY(QDir().mkdir(f_->path("logs")));
    f_->rules.log.open(f_->path("logs/day.log"), page());
    QVERIFY(QDir(f_->path("logs")).removeRecursively());
    panel().meas_statea[kLevel] = true;
    measure_and_store();
    QCOMPARE(results(), QString("1000.0|10600|58.3||||||"));
    QCOMPARE(reasons.size(), 1);
    QVERIFY(!reasons[0].isEmpty());
    QVERIFY(f_->rules.log.log_open());
}

void MeasureCycleTest::link_lost_within_the_wait() {
    show_digital();
    tick({kDcpLevel, kChber, kMer});
    panel().leva = "before";
    // The cable is pulled in the five seconds of the QPSK start.
    f_->on_command = [this](const QByteArray& command) {
        if (command == "BERQPSK") f_->port.vanish_in(2);
    };
    measure_and_store();
    QVERIFY(!f_->link.port_connected);
    QCOMPARE(f_->commands().last(), QString("BERQPSK"));
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(panel().bercomune, kSix);
    QCOMPARE(page().measurements(), 0);
    // The next measurement only turns the lamps off.
    measure_and_store();
    QCOMPARE(panel().dcplev, QString("61.5"));
    QCOMPARE(page().measurements(), 0);
}

void MeasureCycleTest::link_lost_at_any_moment() {
    // A whole cycle takes less than 7 s.
    for (double moment = 0; moment < 6.5; moment += 0.13) {
        init();
        show_digital();
        f_->program.corrected.complete = moment > 3;
        panel().noise_freqd = "1100";
        f_->values["LEVCND?"] = " 12.5";
        f_->raw["LEVDCP?1100.0"] = "LEVDCP?1100.0\rDCP28.3\rOK\r";
        tick({kDcpLevel, kChber, kPvBer, kCfo, kMer});
        if (f_->program.corrected.complete) tick({kCnDigital, kNoiseDigital});
        panel().alarm_stated.fill(true);
        f_->port.vanish_in(moment);
        f_->rules.measure_once();
        const QByteArray words = QByteArray::number(moment);
        QVERIFY2(!f_->link.port_connected, words);
        QVERIFY2(page().measurements() == 0, words);
        QVERIFY2(!f_->port.is_open(), words);
    }
}

void MeasureCycleTest::a_refused_command_loses_the_link() {
    f_->refuse("ATTEN 6");
    panel().meas_statea[kLevel] = true;
    panel().alarm_statea[0] = true;
    measure_and_store();
    QCOMPARE(f_->commands(),
             (QStringList{"MEASURE", "FREQ 1000.0", "ATTEN 6", "ATTEN 6", "ATTEN 6"}));
    QCOMPARE(panel().leva, QString());
    QCOMPARE(page().measurements(), 0);
}

void MeasureCycleTest::the_end_of_the_program_passes_through_data() {
    QTest::addColumn<QByteArray>("at");
    QTest::newRow("at once") << QByteArray("MEASURE");
    QTest::newRow("before the attenuator's wait") << QByteArray("ATTEN 6");
    QTest::newRow("before the QPSK wait") << QByteArray("BERQPSK");
    QTest::newRow("before the last command") << QByteArray("BERQPSK?");
}

void MeasureCycleTest::the_end_of_the_program_passes_through() {
    QFETCH(QByteArray, at);
    f_->rules.log.open(f_->path("day.log"), page());
    show_digital();
    tick({kDcpLevel, kChber, kMer});
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = ends || command == at; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, f_->rules.measure_once());
    // The transaction that had begun came to its end, nothing was sent behind it.
    QCOMPARE(f_->commands().last(), QString::fromLatin1(at));
    QCOMPARE(page().measurements(), 0);
    QCOMPARE(log_bytes(), QByteArray("no such file"));
    QVERIFY(f_->link.port_connected);
}

void MeasureCycleTest::measures_that_run_to_their_end() {
    QVERIFY(!measure_activestate(panel()));
    f_->rules.tick_measures(kAnalogMode);
    QCOMPARE(panel().meas_statea, (std::array{true, false, false}));
    QCOMPARE(panel().meas_stated, (std::array<bool, 8>{}));
    show_digital();
    panel().meas_statea.fill(false);
    f_->rules.tick_measures(kDigitalMode);
    QCOMPARE(panel().meas_statea, (std::array<bool, 3>{}));
    QCOMPARE(panel().meas_stated, (std::array{true, false, false, true, true, true, true, false}));
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::MeasureCycleTest)
#include "measure_cycle_test.moc"
