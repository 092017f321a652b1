// SPDX-License-Identifier: GPL-3.0-or-later
#include <signal.h>

#include <QFile>
#include <QTest>
#include <array>

#include "process_support.h"

namespace m47 {

/// A long measurement that is told to end.
class EndingTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void while_it_waits();
    void within_the_last_transaction_of_a_row();
    void within_the_first_transaction_of_a_row();
    void with_an_alarm();
    void stdout_closed();
};

namespace {

constexpr qint64 kSoon = 2000;  // ms

QString last_command(const MeterProcess& meter) {
    return meter.commands().constLast();
}

/// Empty when every command arrived whole and got its good answer; else the first exchange that did
/// not, and what came before it.
QByteArray unanswered(const MeterProcess& meter) {
    QByteArray before;
    bool open = false;
    for (const TraceEntry& entry : meter.trace()) {
        const bool good =
            entry.received != open && entry.bytes.endsWith(entry.received ? "\r" : "\rOK\r");
        if (!good) return before + " | " + entry.bytes;
        before = entry.bytes;
        open = entry.received;
    }
    return open ? before : QByteArray();
}

}  // namespace

void EndingTest::while_it_waits() {
    const std::array<int, 2> signals_to_end{SIGINT, SIGTERM};
    std::array<TestStand, 2> stands;
    for (TestStand& stand : stands)
        stand.start_measuring({"--count", "1000", "--log", "run.log", "--screenshot", "s.png"});
    for (std::size_t k = 0; k < stands.size(); ++k) {
        TestStand& stand = stands[k];
        // The second after the attenuator has been set; the first two times it is not waited for.
        QVERIFY(stand.meter.wait_for_command("ATTEN 6", 4));
        QVERIFY(stand.remote.wait_for_lines(1));
        stand.remote.send_signal(signals_to_end[k]);
        const Ending ending = stand.remote.wait();
        QCOMPARE(ending.status, 0);
        QCOMPARE(ending.err, QByteArray());
        QVERIFY2(ending.waited < kSoon, qPrintable(QString::number(ending.waited)));
        const QList<QStringList> rows = rows_of(ending.out);
        QVERIFY(!rows.isEmpty());
        for (const QStringList& row : rows) QCOMPARE(row.size(), 11);
        QVERIFY(ending.out.endsWith('\n'));
        QCOMPARE(stand.content("run.log"), as_log(ending.out));
        QVERIFY(QFile::exists(stand.path("s.png")));
        QTRY_COMPARE(unanswered(stand.meter), QByteArray());
        // Each level that was asked for became a row.
        QCOMPARE(stand.meter.commands().count("LEVANL?"), rows.size());
    }
}

void EndingTest::within_the_last_transaction_of_a_row() {
    TestStand stand(
        {"--fault-on", "LEVANL?", "--fault-after", "1", "--fault", "late", "--late", "1.5"});
    stand.start_measuring({"--count", "1000", "--log", "run.log"});
    QVERIFY(stand.meter.wait_for_command("LEVANL?", 2));
    stand.remote.send_signal(SIGINT);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QVERIFY2(ending.waited > 1000, "the transaction was not waited for");
    QVERIFY2(ending.waited < 1500 + kSoon, qPrintable(QString::number(ending.waited)));
    // With the answer the row was complete.
    QCOMPARE(rows_of(ending.out).size(), 2);
    QCOMPARE(rows_of(ending.out)[1].size(), 11);
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
    QCOMPARE(last_command(stand.meter), QString("LEVANL?"));
    QTRY_COMPARE(unanswered(stand.meter), QByteArray());
}

void EndingTest::within_the_first_transaction_of_a_row() {
    TestStand stand(
        {"--fault-on", "MEASURE", "--fault-after", "2", "--fault", "late", "--late", "1.5"});
    stand.start_measuring({"--count", "1000", "--log", "run.log"});
    QVERIFY(stand.meter.wait_for_command("MEASURE", 3));
    stand.remote.send_signal(SIGTERM);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QVERIFY2(ending.waited > 1000, "the transaction was not waited for");
    QVERIFY2(ending.waited < 1500 + kSoon, qPrintable(QString::number(ending.waited)));
    QCOMPARE(rows_of(ending.out).size(), 1);
    QCOMPARE(stand.content("run.log"), as_log(ending.out));
    QCOMPARE(last_command(stand.meter), QString("MEASURE"));
    QTRY_COMPARE(unanswered(stand.meter), QByteArray());
}

void EndingTest::with_an_alarm() {
    TestStand stand;
    stand.start_measuring({"--count", "1000", "--alarm", "level=100:110"});
    QVERIFY(stand.remote.wait_for_lines(1));
    stand.remote.send_signal(SIGINT);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 1);
    QVERIFY2(ending.waited < kSoon, qPrintable(QString::number(ending.waited)));
    const QList<QStringList> rows = rows_of(ending.out);
    for (const QStringList& row : rows) QCOMPARE(row.value(10), QString("FAIL"));
}

void EndingTest::stdout_closed() {
    const QString usual("{ \"$0\" \"$@\"; : > ended; } | head -n 1");
    // As under a parent that ignores the signal of a broken pipe.
    const QString ignored = "trap '' PIPE; " + usual;
    std::array<TestStand, 2> stands;
    stands[0].remote.start_in_shell(usual, stands[0].measuring({"--count", "1000"}));
    stands[1].remote.start_in_shell(ignored, stands[1].measuring({"--count", "1000"}));
    for (TestStand& stand : stands) {
        const Ending ending = stand.remote.wait();
        QVERIFY2(ending.status != -1, "it goes on although nobody reads its rows");
        QCOMPARE(rows_of(ending.out).size(), 1);
        QCOMPARE(rows_of(ending.out)[0].size(), 11);
        QVERIFY(QFile::exists(stand.path("ended")));
        // The row that found no reader was the last; nothing of another one was asked.
        QCOMPARE(stand.meter.commands().count("LEVANL?"), 2);
        QCOMPARE(last_command(stand.meter), QString("LEVANL?"));
        QTRY_COMPARE(unanswered(stand.meter), QByteArray());
    }
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::EndingTest)
#include "ending_test.moc"
