// SPDX-License-Identifier: GPL-3.0-or-later
// The files beside the rows: the log, the picture, the recording and the report of a problem.
#include <sys/stat.h>

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include "unattended_test.h"

namespace m47 {

/// With what the run told and recorded; who measured is not in it.
void UnattendedTest::a_run_reports_its_problem() {
    TestStand stand;
    const QString home = QFileInfo(stand.path("x")).absolutePath();
    stand.remote.environment.insert("HOME", home);
    const Ending ending = stand.measure({"--log", home + "/none/run.log", "--trace", "run.trace",
                                         "--problem-report", "run.tar.gz"});
    QCOMPARE(ending.status, 5);
    QCOMPARE(rows_of(ending.out).size(), 1);
    QProcess tar;
    tar.setWorkingDirectory(home);
    tar.start("tar", {"xvzf", "run.tar.gz"});
    QVERIFY(tar.waitForFinished());
    QCOMPARE(tar.readAllStandardOutput().split('\n').size() - 1, 5);
    QCOMPARE(stand.content("m47-problem/line.trace"), stand.content("run.trace"));
    const QByteArray told = stand.content("m47-problem/messages.txt");
    QVERIFY2(told.contains(" warning m47.run the log ~/none/run.log is not complete"), told);
    QVERIFY(stand.content("m47-problem/ports.txt").contains("in use, connected: yes"));
    QVERIFY(stand.content("m47-problem/versions.txt").contains("folder    ~\n"));

    // Alone it needs neither a database nor a meter.
    EmptyStand alone;
    const Ending written = alone.remote.run({"--problem-report", "a.tar.gz"});
    QCOMPARE(written.status, 0);
    QCOMPARE(written.out + written.err, QByteArray());
    QCOMPARE(alone.files().keys(), QStringList("a.tar.gz"));
    const Ending refused = alone.remote.run({"--problem-report", "none/a.tar.gz"});
    QCOMPARE(refused.status, 5);
    QCOMPARE(refused.err, QByteArray("m47-remote: the report none/a.tar.gz could not be written: "
                                     "No such file or directory\n"));
}

void UnattendedTest::a_picture_replaces_neither_the_database_nor_a_pipe() {
    TestStand stand;
    const Ending ending = stand.measure({"--screenshot", "./VKDM47_03.mdb"});
    QCOMPARE(ending.status, 2);
    QCOMPARE(ending.err,
             QByteArray("m47-remote: --screenshot names the database: ./VKDM47_03.mdb\n"));
    QCOMPARE(stand.meter.commands(), QStringList());
    QVERIFY(!QFile::exists(stand.path("VKDM47_03.mdb")));
    QCOMPARE(mkfifo(qPrintable(stand.path("pipe")), 0600), 0);
    const Ending pipe = stand.measure({"--screenshot", "pipe"});
    QCOMPARE(pipe.status, 5);
    QCOMPARE(pipe.err, QByteArray("m47-remote: cannot write the picture pipe: not a plain file\n"));
}

void UnattendedTest::log_goes_on() {
    TestStand stand;
    const QByteArray before("20/11/26\t23:59:59\t1000.0\t10600\t59.9\t\t\t\t\t\tPASS\r\n");
    QFile log(stand.path("run.log"));
    QVERIFY(log.open(QIODevice::WriteOnly));
    log.write(before);
    log.close();
    const Ending ending = stand.measure({"--log", "run.log"});
    QCOMPARE(ending.status, 0);
    QCOMPARE(rows_of(ending.out).size(), 1);
    QCOMPARE(stand.content("run.log"), before + as_log(ending.out));
}

void UnattendedTest::output_that_cannot_be_written() {
    TestStand log;
    TestStand picture;
    log.start_measuring({"--count", "2", "--log", "no-such-folder/run.log"});
    picture.start_measuring({"--screenshot", "no-such-folder/s.png"});
    for (const char* name : {"/dev/full", "no-such-folder/run.trace"}) {
        TestStand recording;
        const Ending without_recording = recording.measure({"--trace", name});
        QCOMPARE(rows_of(without_recording.out).size(), 1);
        QCOMPARE(without_recording.status, 5);
        QCOMPARE(without_recording.err.count('\n'), 1);
        QVERIFY2(without_recording.err.contains(name), without_recording.err.constData());
    }
    const Ending without_log = log.remote.wait();
    const Ending without_picture = picture.remote.wait();

    // The measured rows are out in any case; that something is missing must be told.
    QCOMPARE(rows_of(without_log.out).size(), 2);
    QVERIFY2(without_log.err.contains("no-such-folder/run.log"), without_log.err.constData());
    QVERIFY(without_log.status != 0);
    QCOMPARE(rows_of(without_picture.out).size(), 1);
    if (RemoteProcess::is_probe()) return;
    QVERIFY(without_picture.status != 0);
    QCOMPARE(without_picture.err.count('\n'), 1);
    QVERIFY(without_picture.err.contains("no-such-folder/s.png"));
}

}  // namespace m47
