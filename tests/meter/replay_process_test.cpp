// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/stat.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include "meter_process.h"

namespace {

/// The path of a file with this content.
QString write(const QTemporaryDir& folder, const QByteArray& content) {
    QFile file(folder.filePath("recording"));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

}  // namespace

/// The meter of a recording, over a real line.
class TestReplayProcess : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_recording_is_answered_as_it_was();
    void a_line_that_was_lost_comes_back();
    void what_was_sent_later_gives_way_to_a_command();
    void recordings_that_cannot_be_used_data();
    void recordings_that_cannot_be_used();
    void a_recording_is_not_written_over();
};

void TestReplayProcess::a_recording_is_answered_as_it_was() {
    const QTemporaryDir folder;
    const QString recording = write(folder,
                                    "RX 10.000 20.000 UNIT?<CR>\n"
                                    "TX 120.000 120.000 UNIT?<CR>\n"
                                    "TX 320.000 340.000 00<CR>OK<CR>\n"
                                    "RX 400.000 410.000 LEVANL?<CR>\n"
                                    "TX 4");
    Program program({"--replay", recording});
    const Opening opening(program.device());
    QElapsedTimer timer;
    timer.start();
    opening.send("UNIT?\r");
    QCOMPARE(opening.receive("UNIT?\r", 5000), QByteArray("UNIT?\r"));
    QVERIFY(timer.elapsed() >= 95);
    QCOMPARE(opening.receive("OK\r", 5000), QByteArray("00\rOK\r"));
    QVERIFY(timer.elapsed() >= 315);
    opening.send("LEVANL?\r");
    QCOMPARE(opening.receive("OK\r", 100), QByteArray());
    QCOMPARE(opening.ask("LOGO?"), QByteArray("LOGO?\rInvalid Parameter(s)\rOK\r"));
    QCOMPARE(program.end(), 0);
    QCOMPARE(program.process().readAllStandardError(),
             "m47-meter: " + recording.toUtf8() +
                 ": the last line is cut off and left out\n"
                 "m47-meter: never recorded, asked once: LOGO?\n");

    Program at_once({"--replay", recording, "--speed", "0", "--strict"});
    const Opening again(at_once.device());
    for (int time = 0; time < 2; ++time) QCOMPARE(again.ask("UNIT?"), "UNIT?\r00\rOK\r");
    again.send("LOGO?\r");
    QCOMPARE(again.receive("ERROR\r", 5000), QByteArray("LOGO?\rCOMMAND ERROR\r"));
}

void TestReplayProcess::a_line_that_was_lost_comes_back() {
    const QTemporaryDir folder;
    const QString recording = write(folder,
                                    "RX 10.000 20.000 UNIT?<CR>\n"
                                    "TX 30.000 30.000 UNIT\n"
                                    "PORT 40.000 40.000 lost unplugged\n"
                                    "PORT 740.000 740.000 open /dev/x 38400,n,8,2\n"
                                    "RX 750.000 760.000 ATTEN?<CR>\n"
                                    "TX 770.000 770.000 ATTEN?<CR>6<CR>OK<CR>\n");
    const QString link = folder.filePath("port");
    const QString trace = folder.filePath("trace");
    Program program({"--replay", recording, "--link", link, "--trace", trace});
    {
        const Opening opening(link.toUtf8());
        opening.send("UNIT?\r");
        QCOMPARE(opening.receive("OK\r", 5000), QByteArray("UNIT"));
        QVERIFY(opening.hung_up());
    }
    QVERIFY(!QFileInfo(link).isSymLink());
    QTRY_VERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(Opening(link.toUtf8()).ask("ATTEN?"), QByteArray("ATTEN?\r6\rOK\r"));
    // What the meter itself writes of a loss is as good a recording.
    QTRY_COMPARE(contents(trace).count('\n'), 7);
    program.end();
    QVERIFY(contents(trace).contains("PORT "));
    Program once_more({"--replay", trace, "--link", link});
    const Opening opening(link.toUtf8());
    opening.send("UNIT?\r");
    QCOMPARE(opening.receive("OK\r", 5000), QByteArray("UNIT"));
    QVERIFY(opening.hung_up());
}

void TestReplayProcess::what_was_sent_later_gives_way_to_a_command() {
    const QTemporaryDir folder;
    const QString recording = write(folder,
                                    "RX 10.000 20.000 UNIT?<CR>\n"
                                    "TX 30.000 30.000 UNIT?<CR>00<CR>OK<CR>\n"
                                    "TX 60030.000 60030.000 noise\n");
    Program program({"--replay", recording});
    const Opening opening(program.device());
    for (int time = 0; time < 3; ++time) QCOMPARE(opening.ask("UNIT?"), "UNIT?\r00\rOK\r");
}

void TestReplayProcess::recordings_that_cannot_be_used_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("none") << QByteArray() << QByteArray("FILE holds no command to the meter\n");
    QTest::newRow("later version")
        << QByteArray("M47TRACE 2 x\nRX 1.000 2.000 A<CR>\n")
        << QByteArray("FILE is a recording of version 2, and only version 1 can be read here\n");
}

void TestReplayProcess::recordings_that_cannot_be_used() {
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, told);
    const QTemporaryDir folder;
    const QString recording = write(folder, text);
    QProcess process;
    const auto told_of = [&process](const QString& path) {
        process.start(METER_PROGRAM, {"--replay", path});
        process.waitForFinished(10000);
        return process.readAllStandardError();
    };
    QCOMPARE(told_of(recording), "m47-meter: " + told.replace("FILE", recording.toUtf8()));
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    const QString pipe = folder.filePath("pipe");
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    for (const QString& path : {folder.path(), folder.filePath("missing"), pipe}) {
        QCOMPARE(told_of(path), "m47-meter: cannot read the recording " + path.toUtf8() + '\n');
        QCOMPARE(process.exitCode(), 1);
    }
}

void TestReplayProcess::a_recording_is_not_written_over() {
    const QTemporaryDir folder;
    const QByteArray text("RX 1.000 2.000 UNIT?<CR>\nTX 3.000 3.000 UNIT?<CR>00<CR>OK<CR>\n");
    const QString recording = write(folder, text);
    const QString link = folder.filePath("link");
    QVERIFY(QFile::link(recording, link));
    for (const QString& name : {recording, link}) {
        QProcess process;
        process.start(METER_PROGRAM, {"--replay", recording, "--trace", name});
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.readAllStandardError(),
                 "m47-meter: --replay and --trace name the same file: " + name.toUtf8() + '\n');
        QCOMPARE(process.exitCode(), 2);
    }
    QFile file(recording);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), text);
}

QTEST_GUILESS_MAIN(TestReplayProcess)
#include "replay_process_test.moc"
