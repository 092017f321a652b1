// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <map>

#include "process_support.h"

namespace m47 {

/// Runs that end without a meter: status 3, one line that says so, and no row lost or cut.
class LostLinkTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void no_device();
    void no_serial_port();
    void unplugged_between_transactions();
    void unplugged_within_a_transaction();
    void not_identified_data();
    void not_identified();
    void lost_in_the_second_cycle_data();
    void lost_in_the_second_cycle();

  private:
    void start(const QString& name, const QStringList& faults);

    std::map<QString, TestStand> stands_;
};

namespace {

const QStringList kOpened{"ATTEN?",        "VER?",  "MEASURE",   "ATTEN 6",   "TONE22K 00",
                          "SYMBRATEQPSK?", "UNIT?", "LOCOSC 00", "FREQ 1000", "ATTEN 6"};
/// A cycle up to its last question.
const QStringList kCycle{"MEASURE", "FREQ 1000.0", "ATTEN 6"};

}  // namespace

void LostLinkTest::start(const QString& name, const QStringList& faults) {
    TestStand& stand = stands_.try_emplace(name, faults).first->second;
    stand.start_measuring({"--count", "3", "--log", "run.log", "--screenshot", "s.png"});
}

/// These runs go on while the other tests run, since most of them only wait for the 15 seconds of
/// an answer.
void LostLinkTest::initTestCase() {
    start("silent meter", {"--fault", "silence"});
    start("errors", {"--fault", "error:3"});
    start("command errors", {"--fault", "commanderror:3"});
    start("error and sleep", {"--fault", "error:1", "--fault", "asleep:2"});
    const QStringList second{"--fault-on", wire::kLevel, "--fault-after", "1", "--fault"};
    for (const char* fault :
         {"garbage:1", "partial:1", "trickle", "endless", "error:3", "silence", "drop"})
        start(fault, second + QStringList(fault) + QStringList{"--baud-factor", "1"});
}

void LostLinkTest::cleanupTestCase() {
    stands_.clear();
}

void LostLinkTest::no_device() {
    EmptyStand stand;
    const Ending ending = stand.remote.run(stand.measuring({"--create-database"}));
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.contains("/dev/no-such-meter"));
    QVERIFY2(ending.waited < 5000, "a device that is not there needs no waiting");
}

void LostLinkTest::no_serial_port() {
    EmptyStand stand;
    stand.write("plain", "no port");
    QStringList arguments = stand.measuring({"--create-database"});
    arguments[arguments.indexOf("--port") + 1] = "1=" + stand.path("plain");
    const Ending ending = stand.remote.run(arguments);
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.contains(stand.path("plain").toUtf8()));
    QCOMPARE(stand.files().value("plain"), QByteArray("no port"));
}

void LostLinkTest::unplugged_between_transactions() {
    // The second cycle's attenuator is the fourth that is set.
    TestStand stand({"--fault-on", "ATTEN 6", "--fault-after", "3", "--fault", "unplug"});
    stand.start_measuring({"--count", "1000", "--log", "run.log"});
    QVERIFY(stand.remote.wait_for_lines(1));
    QTRY_COMPARE_WITH_TIMEOUT(stand.meter.answers_to("ATTEN 6").size(), 4, 30000);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY2(ending.waited < 4000, qPrintable(QString::number(ending.waited)));
    QVERIFY2(rows_of(ending.out).size() == 1, qPrintable(stand.meter.commands().join(u'|')));
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
    QCOMPARE(stand.meter.commands().constLast(), QString("ATTEN 6"));
}

void LostLinkTest::unplugged_within_a_transaction() {
    TestStand stand({"--fault-on", wire::kLevel, "--fault-after", "1", "--fault", "silence"});
    stand.start_measuring({"--count", "1000", "--log", "run.log"});
    QVERIFY(stand.meter.wait_for_command(wire::kLevel, 2));
    stand.meter.unplug();
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY2(ending.waited < 1700, "the lost line was not seen before the echo was due");
    QCOMPARE(rows_of(ending.out).size(), 1);
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
}

void LostLinkTest::not_identified_data() {
    QTest::addColumn<QStringList>("commands");
    QTest::newRow("errors") << QStringList{"ATTEN?", "ATTEN?", "ATTEN?"};
    QTest::newRow("command errors") << QStringList{"ATTEN?", "ATTEN?", "ATTEN?"};
    QTest::newRow("silent meter") << QStringList{"ATTEN?",      wire::kWakeUp, "ATTEN?",
                                                 wire::kWakeUp, "ATTEN?",      wire::kWakeUp};
    QTest::newRow("error and sleep")
        << QStringList{"ATTEN?", "ATTEN?", wire::kWakeUp, "ATTEN?", wire::kWakeUp};
}

void LostLinkTest::not_identified() {
    QFETCH(QStringList, commands);
    TestStand& stand = stands_.at(QTest::currentDataTag());
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.startsWith("m47-remote: "));
    // Nothing follows the presence test, not even the question for the version.
    QTRY_COMPARE(stand.meter.commands(), commands);
    QVERIFY(!QFile::exists(stand.path("run.log")));
}

void LostLinkTest::lost_in_the_second_cycle_data() {
    QTest::addColumn<QStringList>("question");
    QTest::addColumn<double>("seconds");  // from the first question to the end of the link
    QTest::newRow("error:3") << QStringList{wire::kLevel, wire::kLevel, wire::kLevel} << 0.0;
    QTest::newRow("drop") << QStringList{wire::kLevel} << 0.0;
    QTest::newRow("silence") << QStringList{wire::kLevel,  wire::kWakeUp, wire::kLevel,
                                            wire::kWakeUp, wire::kLevel,  wire::kWakeUp}
                             << 6.0;
    // Enough has come to know that the meter is awake: it is waited for, and not asked again.
    for (const char* fault : {"garbage:1", "partial:1", "trickle", "endless"})
        QTest::newRow(fault) << QStringList{wire::kLevel} << 15.0;
}

void LostLinkTest::lost_in_the_second_cycle() {
    QFETCH(QStringList, question);
    QFETCH(double, seconds);
    TestStand& stand = stands_.at(QTest::currentDataTag());
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 3);
    QCOMPARE(ending.err.count('\n'), 1);
    QVERIFY(ending.err.startsWith("m47-remote: "));
    QTRY_COMPARE(stand.meter.commands(),
                 kOpened + kCycle + QStringList(wire::kLevel) + kCycle + question);

    // The row before stands, printed and logged; the one that was being measured is none.
    const QList<QStringList> rows = rows_of(ending.out);
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].size(), 11);
    QVERIFY(ending.out.endsWith('\n'));
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
    QVERIFY(QFile::exists(stand.path("s.png")));

    QList<TraceEntry> asked;
    for (const TraceEntry& entry : stand.meter.trace())
        if (entry.received && entry.bytes == "LEVANL?\r") asked += entry;
    const QDateTime logged = QFileInfo(stand.path("run.log")).lastModified();
    const QDateTime pictured = QFileInfo(stand.path("s.png")).lastModified();
    const double lasted = static_cast<double>(logged.msecsTo(pictured)) / 1000;
    const double cycle = (asked[1].first - asked[0].last) / 1000;
    QVERIFY2(lasted - cycle > seconds - 1 && lasted - cycle < seconds + 4,
             qPrintable(QString::number(lasted - cycle)));
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::LostLinkTest)
#include "lost_link_test.moc"
