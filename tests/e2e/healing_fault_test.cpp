// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>
#include <map>

#include "process_support.h"

namespace m47 {

/// Faults of the line that the link gets over: the row is there all the same.
class HealingFaultTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void a_recording_is_as_good_as_the_meter();
    void repeated_until_answered_data();
    void repeated_until_answered();
    void pause_before_the_wake_up();
    void a_spoilt_echo_is_measured_again();
    void noise_within_an_answer_data();
    void noise_within_an_answer();

  private:
    void start(const QString& name, const QStringList& faults);

    std::map<QString, TestStand> stands_;
};

namespace {

/// The commands of one analog row at the screen's own frequency, with `identification` in the place
/// of "ATTEN?" and `level` in the place of "LEVANL?".
QStringList commands_of_a_row(const QStringList& identification, const QStringList& level) {
    return identification + QStringList{"VER?",          "MEASURE", "ATTEN 6",     "TONE22K 00",
                                        "SYMBRATEQPSK?", "UNIT?",   "LOCOSC 00",   "FREQ 1000",
                                        "ATTEN 6",       "MEASURE", "FREQ 1000.0", "ATTEN 6"} +
           level;
}

/// Rows without their times.
QList<QStringList> values_of(const QByteArray& rows) {
    QList<QStringList> values;
    for (const QStringList& row : rows_of(rows)) values += row.mid(2);
    return values;
}

}  // namespace

void HealingFaultTest::start(const QString& name, const QStringList& faults) {
    TestStand& stand = stands_.try_emplace(name, faults).first->second;
    stand.start_measuring({"--log", "run.log", "--trace", "line.trace"});
}

/// All runs go on at the same time, since most of them only wait.
void HealingFaultTest::initTestCase() {
    start("error", {"--fault", "error:1"});
    start("error twice", {"--fault", "error:2"});
    start("error in the measurement", {"--fault-on", wire::kLevel, "--fault", "error:2"});
    start("command error", {"--fault-on", wire::kLevel, "--fault", "commanderror:2"});
    start("asleep", {"--fault", "asleep:1"});
    start("asleep twice", {"--fault-on", wire::kLevel, "--fault", "asleep:2"});
    start("error, then asleep",
          {"--fault-on", wire::kLevel, "--fault", "error:1", "--fault", "asleep:1"});
    start("late", {"--fault-on", wire::kLevel, "--fault", "late:1", "--late", "1.5"});
    // The delay keeps the answer to the repeated command apart from the late one.
    start("later than the echo limit",
          {"--delay", "400", "--fault-on", wire::kLevel, "--fault", "late:1", "--late", "1.8"});
    start("spoilt echo", {"--fault", "wrongecho:1", "--fault-on", wire::kLevel});
    start("spoilt echoes", {"--fault", "wrongecho", "--fault-on", wire::kLevel});
    start("unplugged", {"--fault-on", wire::kLevel, "--fault", "unplug:1"});
    for (const char* seed : {"1", "2", "3"})
        start(QStringLiteral("noise ") + seed,
              {"--seed", seed, "--fault-on", wire::kLevel, "--fault", "noise:1"});
}

void HealingFaultTest::cleanupTestCase() {
    stands_.clear();
}

void HealingFaultTest::repeated_until_answered_data() {
    QTest::addColumn<QStringList>("identification");
    QTest::addColumn<QStringList>("level");
    const QStringList once{"ATTEN?"};
    const QStringList level{wire::kLevel};
    QTest::newRow("error") << QStringList{"ATTEN?", "ATTEN?"} << level;
    QTest::newRow("error twice") << QStringList{"ATTEN?", "ATTEN?", "ATTEN?"} << level;
    QTest::newRow("error in the measurement")
        << once << QStringList{wire::kLevel, wire::kLevel, wire::kLevel};
    QTest::newRow("command error") << once << QStringList{wire::kLevel, wire::kLevel, wire::kLevel};
    QTest::newRow("asleep") << QStringList{"ATTEN?", wire::kWakeUp, "ATTEN?"} << level;
    QTest::newRow("asleep twice") << once
                                  << QStringList{wire::kLevel, wire::kWakeUp, wire::kLevel,
                                                 wire::kWakeUp, wire::kLevel};
    QTest::newRow("error, then asleep")
        << once << QStringList{wire::kLevel, wire::kLevel, wire::kWakeUp, wire::kLevel};
    QTest::newRow("late") << once << level;
    QTest::newRow("later than the echo limit")
        << once << QStringList{wire::kLevel, wire::kWakeUp, wire::kLevel};
}

void HealingFaultTest::repeated_until_answered() {
    QFETCH(QStringList, identification);
    QFETCH(QStringList, level);
    TestStand& stand = stands_.at(QTest::currentDataTag());
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QTRY_COMPARE(stand.meter.commands(), commands_of_a_row(identification, level));

    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].size(), 11);
    // What was asked twice may have been answered twice; either is the meter's value.
    QStringList values;
    for (const QByteArray& answer : stand.meter.answers_to(wire::kLevel))
        values += QString::fromLatin1(answer.split('\r').value(1)).trimmed();
    QVERIFY2(values.contains(rows[0][4]), qPrintable(rows[0][4]));
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
}

void HealingFaultTest::pause_before_the_wake_up() {
    TestStand& stand = stands_.at("asleep twice");
    stand.remote.wait();
    double asked = 0;
    int pauses = 0;
    for (const TraceEntry& entry : stand.meter.trace()) {
        if (entry.bytes == "\r") {
            ++pauses;
            // Two seconds without an echo; both ends see the characters a little late.
            const double pause = entry.first - asked;
            QVERIFY2(pause > 1900 && pause < 3500, qPrintable(QString::number(pause)));
        }
        asked = entry.last;
    }
    QCOMPARE(pauses, 2);
}

/// The meter may have been asked something else: the value is none.
void HealingFaultTest::a_spoilt_echo_is_measured_again() {
    const QByteArray told =
        "m47-remote: no row at 1000.0 MHz: the answer to LEVANL? came late or was spoilt\n";
    TestStand& once = stands_.at("spoilt echo");
    const Ending healed = once.remote.wait();
    QCOMPARE(healed.status, 0);
    QCOMPARE(healed.err, told);
    QCOMPARE(rows_of(healed.out).size(), 1);
    const QByteArray answer = once.meter.answers_to(wire::kLevel).constLast();
    QCOMPARE(rows_of(healed.out)[0][4].toUtf8(), answer.split('\r')[1].trimmed());
    QCOMPARE(once.content("run.log"), as_log(healed.out));

    TestStand& always = stands_.at("spoilt echoes");
    const Ending missing = always.remote.wait();
    QCOMPARE(missing.status, 5);
    QCOMPARE(missing.err, told.repeated(3));
    QCOMPARE(missing.out, QByteArray());
    QCOMPARE(always.content("run.log"), QByteArray());
}

void HealingFaultTest::noise_within_an_answer_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"noise 1", "noise 2", "noise 3"}) QTest::newRow(name) << name;
}

/// The value is the meter's, at once where the noise stands before the answer, or measured again.
void HealingFaultTest::noise_within_an_answer() {
    QFETCH(QString, name);
    TestStand& stand = stands_.at(name);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QStringList values;
    for (QByteArray answer : stand.meter.answers_to(wire::kLevel)) {
        answer.removeIf([](char byte) { return static_cast<signed char>(byte) < 0; });
        QVERIFY(answer.startsWith("LEVANL?\r  ") && answer.endsWith("\rOK\r"));
        values += QString::fromLatin1(answer.split('\r')[1]).trimmed();
    }
    QCOMPARE(ending.err.count('\n'), values.size() - 1);

    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].size(), 11);
    QCOMPARE(rows[0][4], values.constLast());
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
}

/// What the program recorded, and the meter's own trace: on either the same run gives the same, its
/// times aside.
void HealingFaultTest::a_recording_is_as_good_as_the_meter() {
    std::map<QString, Ending> first;
    std::map<QString, TestStand> replays;
    for (const auto& name :
         {"error twice", "asleep", "late", "spoilt echo", "noise 2", "unplugged"}) {
        TestStand& stand = stands_.at(name);
        first[name] = stand.remote.wait();
        for (const QString& recording :
             {stand.path("line.trace"), stand.folder.filePath("meter.trace")}) {
            QStringList options{"--replay", recording, "--strict"};
            TestStand& replay = replays.try_emplace(recording, options).first->second;
            replay.start_measuring({"--log", "run.log"});
        }
    }
    for (const auto& [name, ending] : first) {
        TestStand& stand = stands_.at(name);
        for (const QString& recording :
             {stand.path("line.trace"), stand.folder.filePath("meter.trace")}) {
            TestStand& replay = replays.at(recording);
            const Ending again = replay.remote.wait();
            const QByteArray where = name.toUtf8() + ", " + recording.toUtf8() + ": " + again.err;
            QVERIFY2(again.status == ending.status && again.err == ending.err, where);
            QVERIFY2(values_of(again.out) == values_of(ending.out), where + again.out);
            QVERIFY2(values_of(replay.content("run.log")) == values_of(stand.content("run.log")),
                     where);
            QVERIFY2(replay.meter.commands() == stand.meter.commands(),
                     where + replay.meter.commands().join(u'|').toUtf8());
        }
    }
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::HealingFaultTest)
#include "healing_fault_test.moc"
