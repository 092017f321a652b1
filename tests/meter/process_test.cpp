// SPDX-License-Identifier: GPL-3.0-or-later
#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// The program under test, ended at the latest with the test.
class Program {
  public:
    explicit Program(const QStringList& arguments) {
        process_.start(METER_PROGRAM, arguments);
        if (process_.waitForReadyRead(10000)) device_ = process_.readLine().trimmed();
    }

    QByteArray device() const { return device_; }
    QProcess& process() { return process_; }

    void signal(int number) { ::kill(static_cast<pid_t>(process_.processId()), number); }

    /// Ends the program as a user does and gives its exit status.
    int end() {
        process_.terminate();
        const bool ended = process_.waitForFinished(10000);
        return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }

  private:
    QProcess process_;
    QByteArray device_;
};

/// An opening of the device, closed at the end of its life.
class Opening {
  public:
    explicit Opening(const QByteArray& path) : descriptor_(open(path.constData(), flags)) {}
    ~Opening() { close(descriptor_); }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

    int descriptor() const { return descriptor_; }

    void send(const QByteArray& bytes) const {
        QCOMPARE(write(descriptor_, bytes.constData(), static_cast<size_t>(bytes.size())),
                 static_cast<ssize_t>(bytes.size()));
    }

    /// What arrives until the text ends with `end`, or until the time in ms is over.
    QByteArray receive(const QByteArray& end, int limit) const {
        QByteArray bytes;
        QElapsedTimer timer;
        timer.start();
        while (!bytes.endsWith(end) && timer.elapsed() < limit) {
            pollfd input{descriptor_, POLLIN, 0};
            if (poll(&input, 1, 20) > 0) {
                char buffer[4096];
                const ssize_t count = read(descriptor_, buffer, sizeof buffer);
                if (count <= 0) {
                    hung_up_ = true;
                    return bytes;
                }
                bytes.append(buffer, static_cast<qsizetype>(count));
            }
        }
        return bytes;
    }

    QByteArray ask(const QByteArray& command) const {
        send(command + '\r');
        return receive("OK\r", 10000);
    }

    bool hung_up() const { return hung_up_; }

  private:
    static constexpr int flags = O_RDWR | O_NOCTTY;
    int descriptor_;
    mutable bool hung_up_ = false;
};

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

class TestProcess : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void answers_through_the_device();
    void line_is_raw_from_the_start();
    void line_survives_between_openings();
    void link_is_made_and_removed();
    void stale_link_is_replaced();
    void file_in_the_way_is_kept();
    void answers_are_paced();
    void late_answer();
    void sleeping_meter_wakes();
    void dropped_line();
    void trickle_ends_with_the_next_command();
    void endless_ends_with_the_next_command();
    void unread_answer_does_not_block();
    void long_answer_is_complete();
    void block_in_one_piece();
    void trace_of_an_exchange();
    void state_on_request_and_at_the_end();
    void stale_lock_is_lifted();
    void held_lock_stays();
    void held_lock_stays_whatever_its_path();
    void help_version_and_usage();
    void unwritable_trace();
    void orbit_without_tables();
};

void TestProcess::answers_through_the_device() {
    Program program({});
    QVERIFY(program.device().startsWith("/dev/pts/"));
    const Opening opening(program.device());
    QCOMPARE(opening.ask("ATTEN?"), QByteArray("ATTEN?\r6\rOK\r"));
    QCOMPARE(opening.ask("VER?"), QByteArray("VER?\rV3.1.0 PLUS\rOK\r"));
    QCOMPARE(program.end(), 0);
}

void TestProcess::line_is_raw_from_the_start() {
    Program program({});
    const Opening opening(program.device());
    termios line{};
    QCOMPARE(tcgetattr(opening.descriptor(), &line), 0);
    QCOMPARE(line.c_lflag & static_cast<tcflag_t>(ECHO | ICANON), tcflag_t{0});
    QCOMPARE(line.c_iflag & static_cast<tcflag_t>(ICRNL), tcflag_t{0});
    QVERIFY((line.c_cflag & CSTOPB) != 0);
}

void TestProcess::line_survives_between_openings() {
    Program program({});
    for (int i = 0; i < 3; ++i) {
        const Opening opening(program.device());
        QCOMPARE(opening.ask("ATTEN " + QByteArray::number(i)),
                 "ATTEN " + QByteArray::number(i) + "\rOK\r");
    }
    const Opening opening(program.device());
    QCOMPARE(opening.ask("ATTEN?"), QByteArray("ATTEN?\r2\rOK\r"));
}

void TestProcess::link_is_made_and_removed() {
    const QTemporaryDir folder;
    const QString link = folder.filePath("port");
    Program program({"--link", link});
    QCOMPARE(QFileInfo(link).symLinkTarget(), QString::fromUtf8(program.device()));
    QCOMPARE(Opening(link.toUtf8()).ask("ATTEN?"), QByteArray("ATTEN?\r6\rOK\r"));
    QCOMPARE(program.end(), 0);
    QVERIFY(!QFileInfo(link).isSymLink());
}

void TestProcess::stale_link_is_replaced() {
    const QTemporaryDir folder;
    const QString link = folder.filePath("port");
    QVERIFY(QFile::link("/dev/pts/nowhere", link));
    Program program({"--link", link});
    QCOMPARE(QFileInfo(link).symLinkTarget(), QString::fromUtf8(program.device()));
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link("/dev/pts/nowhere", link));
    program.signal(SIGINT);
    QVERIFY(program.process().waitForFinished(10000));
    QCOMPARE(program.process().exitCode(), 0);
    QVERIFY2(QFileInfo(link).isSymLink(), "a link that leads elsewhere by now is not removed");
}

void TestProcess::file_in_the_way_is_kept() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("port");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("precious");
    file.close();
    QProcess process;
    process.start(METER_PROGRAM, {"--link", path});
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardError().count('\n'), 1);
    QCOMPARE(contents(path), QByteArray("precious"));
}

void TestProcess::answers_are_paced() {
    Program program({"--logger-bytes", "3000"});
    const Opening opening(program.device());
    QElapsedTimer timer;
    timer.start();
    const QByteArray answer = opening.ask("DATAOUT");
    const double taken = static_cast<double>(timer.nsecsElapsed()) / 1.0e6;
    const double wire = static_cast<double>(answer.size()) * 11.0 / 38.4;
    QVERIFY(answer.endsWith("OK\r"));
    QVERIFY2(taken >= wire, qPrintable(QString("%1 ms for %2").arg(taken).arg(wire)));
    QVERIFY2(taken < wire + 500, qPrintable(QString("%1 ms for %2").arg(taken).arg(wire)));
}

void TestProcess::late_answer() {
    Program program({"--fault", "late:1", "--late", "0.4"});
    const Opening opening(program.device());
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(opening.ask("ATTEN?"), QByteArray("ATTEN?\r6\rOK\r"));
    QVERIFY(timer.elapsed() >= 400);
    timer.restart();
    QCOMPARE(opening.ask("ATTEN?"), QByteArray("ATTEN?\r6\rOK\r"));
    QVERIFY(timer.elapsed() < 400);
}

void TestProcess::sleeping_meter_wakes() {
    Program program({"--fault", "asleep:1"});
    const Opening opening(program.device());
    opening.send("ATTEN?\r");
    QCOMPARE(opening.receive("OK\r", 200), QByteArray());
    opening.send("\r");
    QCOMPARE(opening.ask("ATTEN?"), QByteArray("ATTEN?\r6\rOK\r"));
}

void TestProcess::dropped_line() {
    Program program({"--fault", "drop", "--fault-after", "1"});
    const Opening opening(program.device());
    QCOMPARE(opening.ask("ATTEN?"), QByteArray("ATTEN?\r6\rOK\r"));
    opening.send("ATTEN?\r");
    opening.receive("OK\r", 5000);
    QVERIFY(opening.hung_up());
    QCOMPARE(program.process().state(), QProcess::Running);
    QCOMPARE(program.end(), 0);
}

void TestProcess::trickle_ends_with_the_next_command() {
    Program program({"--fault", "trickle:1"});
    const Opening opening(program.device());
    opening.send("ATTEN?\r");
    const QByteArray bytes = opening.receive("OK\r", 900);
    QVERIFY2(bytes.size() >= 8 && bytes.size() <= 12, bytes.constData());
    QVERIFY(bytes.startsWith("ATTEN?\r01"));
    QVERIFY(opening.ask("UNIT?").endsWith("UNIT?\r00\rOK\r"));
}

void TestProcess::endless_ends_with_the_next_command() {
    for (const char* factor : {"1", "0"}) {
        Program program({"--fault", "endless:1", "--baud-factor", factor});
        const Opening opening(program.device());
        opening.send("ATTEN?\r");
        QVERIFY(opening.receive("OK\r", 500).size() > 300);
        opening.send("UNIT?\r");
        QVERIFY(opening.receive("UNIT?\r00\rOK\r", 5000).endsWith("UNIT?\r00\rOK\r"));
        QCOMPARE(program.end(), 0);
    }
}

void TestProcess::unread_answer_does_not_block() {
    Program program({"--baud-factor", "0", "--logger-bytes", "400000"});
    const Opening opening(program.device());
    opening.send("DATAOUT\r");
    QTest::qWait(3000);
    opening.receive("nothing ends like this", 300);
    QCOMPARE(opening.ask("ATTEN?").right(12), QByteArray("ATTEN?\r6\rOK\r"));
}

void TestProcess::long_answer_is_complete() {
    Program program({"--baud-factor", "0", "--logger-bytes", "300000"});
    const Opening opening(program.device());
    const QByteArray answer = opening.ask("DATAOUT");
    QVERIFY(answer.size() > 300000);
    QVERIFY(answer.startsWith("DATAOUT\rLOG 0001 "));
    QVERIFY(answer.endsWith("\r\nOK\r"));
}

void TestProcess::block_in_one_piece() {
    Program program({});
    const Opening opening(program.device());
    const QByteArray block =
        "S00A000041534C2030303065\rS113000000000000000000000000000000000000EC\r"
        "S113001000000000000000000000000000000000DC\r"
        "S113002000000000000000000000000000000000CC\r"
        "S10D00302A2A2A2A2A2A2A2A2A2A1E\rS9030000FC";
    opening.send(block + '\r');
    const QByteArray echo = opening.receive("S9030000FC\rOK\r", 5000);
    QVERIFY(echo.startsWith("S00A000041534C2030303065\r"));
    QVERIFY(echo.endsWith("S9030000FC\rOK\r"));
    QVERIFY(opening.ask("ASLNAME?").startsWith("ASLNAME?\r00\t**********\r01\tBOREAL 19E\r"));
}

void TestProcess::trace_of_an_exchange() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("trace");
    Program program({"--trace", path, "--delay", "20"});
    {
        const Opening opening(program.device());
        opening.send("ATT");
        QTest::qWait(50);
        QCOMPARE(opening.ask("EN?"), QByteArray("ATTEN?\r6\rOK\r"));
    }
    QTRY_COMPARE(contents(path).count('\n'), 2);
    const auto lines = contents(path).split('\n');
    const auto received = lines.at(0).split(' ');
    const auto sent = lines.at(1).split(' ');
    QCOMPARE(received.at(0), QByteArray("RX"));
    QCOMPARE(received.at(3), QByteArray("ATTEN?<CR>"));
    QCOMPARE(sent.at(0), QByteArray("TX"));
    QCOMPARE(sent.at(3), QByteArray("ATTEN?<CR>6<CR>OK<CR>"));
    QVERIFY(received.at(2).toDouble() - received.at(1).toDouble() >= 40.0);
    QVERIFY(sent.at(1).toDouble() - received.at(2).toDouble() >= 20.0);
    QVERIFY(sent.at(2).toDouble() - sent.at(1).toDouble() >= 11 * 11 / 38.4 - 0.1);
}

void TestProcess::state_on_request_and_at_the_end() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("state");
    Program program({"--state", path});
    const Opening opening(program.device());
    opening.ask("LOGO FIRST");
    program.signal(SIGUSR1);
    QTRY_VERIFY(contents(path).contains("\nlogo FIRST\n"));
    opening.ask("LOGO SECOND");
    QCOMPARE(program.end(), 0);
    QVERIFY(contents(path).contains("\nlogo SECOND\n"));
}

void TestProcess::stale_lock_is_lifted() {
    Program program({});
    int locked = 0;
    {
        const Opening opening(program.device());
        QCOMPARE(ioctl(opening.descriptor(), TIOCEXCL), 0);
        QCOMPARE(ioctl(opening.descriptor(), TIOCGEXCL, &locked), 0);
        QVERIFY(locked != 0);
    }
    QTest::qWait(500);
    const Opening again(program.device());
    QCOMPARE(ioctl(again.descriptor(), TIOCGEXCL, &locked), 0);
    QCOMPARE(locked, 0);
}

void TestProcess::held_lock_stays() {
    Program program({});
    const Opening opening(program.device());
    QCOMPARE(ioctl(opening.descriptor(), TIOCEXCL), 0);
    QTest::qWait(500);
    int locked = 0;
    QCOMPARE(ioctl(opening.descriptor(), TIOCGEXCL, &locked), 0);
    QVERIFY(locked != 0);
}

void TestProcess::held_lock_stays_whatever_its_path() {
    // As in a container: the same device, but its path is another one there.
    Program program({});
    const QTemporaryDir elsewhere;
    const QByteArray folder = QFile::encodeName(elsewhere.path());
    const QByteArray path = folder + program.device().mid(QByteArray("/dev/pts").size());
    int ready[2] = {};
    QCOMPARE(pipe(ready), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        const bool mounted = unshare(CLONE_NEWNS) == 0 &&
                             mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                             mount("/dev/pts", folder, nullptr, MS_BIND, nullptr) == 0;
        const int line = mounted ? open(path, O_RDWR | O_NOCTTY) : -1;
        const char held = line >= 0 && ioctl(line, TIOCEXCL) == 0 ? 'y' : 'n';
        if (write(ready[1], &held, 1) == 1) pause();
        _exit(0);
    }
    char held = 'n';
    QCOMPARE(read(ready[0], &held, 1), ssize_t{1});
    QTest::qWait(500);
    int locked = 0;
    {
        const Opening opening(program.device());
        ioctl(opening.descriptor(), TIOCGEXCL, &locked);
    }
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    if (held != 'y') QSKIP("no rights to mount");
    QVERIFY(locked != 0);
}

void TestProcess::help_version_and_usage() {
    const auto run = [](const QStringList& arguments, QProcess& process) {
        process.start(METER_PROGRAM, arguments);
        return process.waitForFinished(10000) ? process.exitCode() : -1;
    };
    QProcess help;
    QCOMPARE(run({"--help"}, help), 0);
    QVERIFY(help.readAllStandardOutput().startsWith("Usage: m47-meter "));
    QProcess version;
    QCOMPARE(run({"--version"}, version), 0);
    QVERIFY(version.readAllStandardOutput().startsWith("m47-meter "));
    QProcess unknown;
    QCOMPARE(run({"--fast"}, unknown), 2);
    QCOMPARE(unknown.readAllStandardOutput(), QByteArray());
    QCOMPARE(unknown.readAllStandardError().count('\n'), 1);
}

void TestProcess::unwritable_trace() {
    QProcess process;
    process.start(METER_PROGRAM, {"--trace", "/nonexistent/folder/trace"});
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("m47-meter: cannot write /nonexistent/folder/trace\n"));
}

void TestProcess::orbit_without_tables() {
    QProcess process;
    process.start(METER_PROGRAM, {"--sky", "orbit", "--sky-tables", "/nonexistent/tables"});
    QVERIFY(process.waitForFinished(10000));
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("m47-meter: no scan tables in /nonexistent/tables\n"));
    QVERIFY(process.readAllStandardOutput().isEmpty());
}

QTEST_GUILESS_MAIN(TestProcess)
#include "process_test.moc"
