// SPDX-License-Identifier: GPL-3.0-or-later
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QTest>
#include <array>
#include <memory>
#include <vector>

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
    void before_the_first_row();
    void stdout_closed();
    void stdout_closed_while_a_log_is_kept();
    void stdout_closed_from_the_start();
    void stdout_stalled();
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
    const std::array<int, 3> signals_to_end{SIGINT, SIGTERM, SIGHUP};
    std::array<TestStand, 3> stands;
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
        QCOMPARE(ending.err, QByteArray("m47-remote: not every row went to stdout: Broken pipe\n"));
        // The row that found no reader was the last; nothing of another one was asked.
        QCOMPARE(stand.meter.commands().count("LEVANL?"), 2);
        QCOMPARE(last_command(stand.meter), QString("LEVANL?"));
        QTRY_COMPARE(unanswered(stand.meter), QByteArray());
    }
}

/// Told to end when nothing is there to be good.
void EndingTest::before_the_first_row() {
    TestStand stand({"--fault-on", "UNIT?", "--fault", "late", "--late", "1"});
    stand.start_measuring({"--count", "1000"});
    QVERIFY(stand.meter.wait_for_command("UNIT?"));
    stand.remote.send_signal(SIGTERM);
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 7);
    QCOMPARE(ending.out, QByteArray());
    QCOMPARE(ending.err, QByteArray("m47-remote: nothing was measured\n"));
}

void EndingTest::stdout_closed_while_a_log_is_kept() {
    TestStand stand;
    stand.remote.start_in_shell("{ \"$0\" \"$@\"; echo $? > ended; } | head -n 1",
                                stand.measuring({"--count", "4", "--log", "run.log"}));
    const Ending ending = stand.remote.wait();
    QCOMPARE(rows_of(ending.out).size(), 1);
    QCOMPARE(stand.content("ended"), QByteArray("5\n"));
    QCOMPARE(ending.err, QByteArray("m47-remote: not every row went to stdout: Broken pipe\n"));
    QCOMPARE(rows_of(stand.content("run.log")).size(), 4);
}

/// What is opened first must not come to be stdout: that would be the database.
void EndingTest::stdout_closed_from_the_start() {
    TestStand stand;
    stand.remote.start_in_shell("exec \"$0\" \"$@\" >&-",
                                stand.measuring({"--count", "2", "--log", "run.log"}));
    const Ending ending = stand.remote.wait();
    QCOMPARE(ending.status, 5);
    QCOMPARE(ending.err.count('\n'), 1);
    QCOMPARE(rows_of(stand.content("run.log")).size(), 2);
    QVERIFY(stand.content("VKDM47_03.mdb").startsWith("SQLite format 3"));
}

namespace {

/// A pipe that takes no byte more until somebody reads it.
class FullPipe {
  public:
    explicit FullPipe(const QString& path) {
        const QByteArray name = QFile::encodeName(path);
        if (mkfifo(name.constData(), 0600) != 0) qFatal("no pipe");
        pipe_ = ::open(name.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        const QByteArray block(4096, ' ');
        while (::write(pipe_, block.constData(), 4096) > 0) continue;
    }
    ~FullPipe() { ::close(pipe_); }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;

    QByteArray take() const {
        QByteArray all;
        QByteArray block(65536, ' ');
        for (;;) {
            const ssize_t got = ::read(pipe_, block.data(), static_cast<std::size_t>(block.size()));
            if (got <= 0) return all;
            all += block.first(got);
        }
    }

  private:
    int pipe_ = -1;
};

}  // namespace

void EndingTest::stdout_stalled() {
    std::array<TestStand, 2> stands;
    std::vector<std::unique_ptr<FullPipe>> pipes;
    for (TestStand& stand : stands) {
        pipes.push_back(std::make_unique<FullPipe>(stand.path("pipe")));
        stand.remote.start_in_shell("exec \"$0\" \"$@\" >pipe",
                                    stand.measuring({"--count", "3", "--log", "run.log"}));
    }
    const QByteArray told(
        "m47-remote: stdout takes no rows now, the run goes on: its reader has "
        "stalled\n");
    for (TestStand& stand : stands) {
        QTRY_COMPARE_WITH_TIMEOUT(rows_of(stand.content("run.log")).size(), 3, 60000);
        QVERIFY(stand.remote.wait_for_error_lines(1));
    }
    // A reader that comes back has lost nothing; one that does not come ends the wait.
    QByteArray taken = pipes[0]->take();
    const Ending read = stands[0].remote.wait();
    QCOMPARE(read.status, 0);
    QCOMPARE(read.err, told);
    taken += pipes[0]->take();
    QCOMPARE(as_log(taken.mid(taken.lastIndexOf(' ') + 1)), stands[0].content("run.log"));
    const Ending unread = stands[1].remote.wait();
    QCOMPARE(unread.status, 5);
    QCOMPARE(unread.err,
             told + "m47-remote: not every row went to stdout: its reader has stalled\n");
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::EndingTest)
#include "ending_test.moc"
