// SPDX-License-Identifier: GPL-3.0-or-later
// Signals to the real program in each kind of its work, with the dispositions that a shell gives.
#include <signal.h>
#include <sys/resource.h>

#include <QDir>
#include <QRegularExpression>
#include <QTest>
#include <array>

#include "signal_stand.h"

namespace m47 {

class SignalTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_window_is_told_to_end_data();
    void a_window_is_told_to_end();
    void a_window_goes_on();
    void a_second_signal_cuts_the_exchange_off();
    void the_simulated_meter_ends_with_a_program_that_is_killed();
    void two_signals_at_once_are_one();
    void a_hang_up_that_is_ignored();
    void an_unattended_run_goes_on_data();
    void an_unattended_run_goes_on();
    void an_unattended_run_is_told_to_end_data();
    void an_unattended_run_is_told_to_end();
    void an_import_is_told_to_end_data();
    void an_import_is_told_to_end();
    void an_import_in_the_window_is_told_to_end();
    void printing_is_told_to_end();
    void help_into_a_closed_pipe();
    void a_file_at_its_limit();
    void a_download_at_its_limit();
};

namespace {

struct EndSignal {
    int number;
    const char* name;
};
constexpr std::array<EndSignal, 3> kEndSignals{
    {{SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}, {SIGINT, "SIGINT"}}};

bool all_signals() {
    return qEnvironmentVariableIsSet("M47_ALL_SIGNALS");
}

/// Every command got its whole answer, or is one of a block, which gets one for all its lines.
QByteArray unanswered(const MeterProcess& meter) {
    const QList<TraceEntry> trace = meter.trace();
    if (trace.isEmpty()) return {};
    if (trace.constLast().received) return trace.constLast().bytes;
    return trace.constLast().bytes.endsWith('\r') ? QByteArray() : trace.constLast().bytes;
}

/// The signals that are to change nothing.
void shake(RemoteProcess& remote) {
    for (const int number : {SIGPIPE, SIGXFSZ, SIGCONT}) remote.send_signal(number);
    remote.send_signal(SIGTSTP);
    QVERIFY(wait_until_stopped(remote, true));
    remote.send_signal(SIGCONT);
    QVERIFY(wait_until_stopped(remote, false));
}

}  // namespace

void SignalTest::a_window_is_told_to_end_data() {
    QTest::addColumn<int>("work");
    QTest::addColumn<int>("kind");
    const QList<WindowWork> works = window_works();
    for (int k = 0; k < works.size(); ++k)
        for (int kind = 0; kind < 3; ++kind)
            if (all_signals() || kind == k % 3)
                QTest::addRow("%s, %s", works[k].name, kEndSignals[std::size_t(kind)].name)
                    << k << kind;
}

void SignalTest::a_window_is_told_to_end() {
    QFETCH(const int, work);
    QFETCH(const int, kind);
    const WindowWork one = window_works().at(work);
    const EndSignal& signal = kEndSignals[std::size_t(kind)];
    WindowStand window(one.meter_options);
    window.start();
    window.order(one.orders);
    if (!one.busy_at.isEmpty())
        QVERIFY(window.wait_for(one.busy_at, one.times));
    else if (one.times > 0)
        QVERIFY(window.wait_until_ready());
    else
        QVERIFY(window.stand.remote.wait_for_lines(int(one.orders.size())));
    const qint64 id = window.stand.remote.process().processId();
    window.stand.remote.send_signal(signal.number);
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 128 + signal.number);
    const QString line =
        QStringLiteral("^m47-remote: ended by %1: %2\n$").arg(signal.name, one.how_far);
    QVERIFY2(QRegularExpression(line).match(told(ending)).hasMatch(), told(ending).constData());
    QTRY_COMPARE(unanswered(window.stand.meter), QByteArray());
    if (!one.last.isEmpty())
        QVERIFY2(window.stand.meter.commands().constLast().startsWith(one.last),
                 qPrintable(window.stand.meter.commands().constLast()));
    QCOMPARE(window.damage(), QString());
    QCOMPARE(locks_of(id, window.stand.meter.link()), QStringList());
}

void SignalTest::a_window_goes_on() {
    WindowStand window({});
    window.start();
    window.order({"trigger program", "trigger nuovo", "press Yes"});
    QVERIFY(window.wait_for("PROGRAM 02"));
    shake(window.stand.remote);
    QVERIFY(window.wait_until_ready());
    QCOMPARE(window.stand.meter.commands().filter(QRegularExpression("^STORE")).size(), 5);
    // The same when nothing is done.
    shake(window.stand.remote);
    window.order({"trigger realtime", "click meas_statea_0", "trigger single_acq"});
    QVERIFY(window.wait_for("LEVANL?"));
    QVERIFY(window.wait_until_ready());
    window.stand.remote.send_signal(SIGTERM);
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 128 + SIGTERM);
    QCOMPARE(told(ending).count('\n'), 1);
    QCOMPARE(window.damage(), QString());
}

void SignalTest::a_second_signal_cuts_the_exchange_off() {
    WindowStand window({"--fault-on", "DATAOUT", "--fault", "trickle"});
    window.start();
    window.order({"trigger download", "type tmpfile logs.tmp", "click cmddownload"});
    QVERIFY(window.wait_for("DATAOUT"));
    const qint64 id = window.stand.remote.process().processId();
    window.stand.remote.send_signal(SIGTERM);
    QTest::qWait(400);  // nearer ones are taken for one
    window.stand.remote.send_signal(SIGTERM);
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 128 + SIGTERM);
    QCOMPARE(told(ending), QByteArray("m47-remote: ended by SIGTERM: the download brought nothing, "
                                      "the meter still has its logs\n"));
    QVERIFY(!QFile::exists(window.stand.path("LOGS.TMP")));
    QCOMPARE(window.damage(), QString());
    QCOMPARE(locks_of(id, window.stand.meter.link()), QStringList());
}

/// The meter that the start page has started outlives no program, however that ends.
void SignalTest::the_simulated_meter_ends_with_a_program_that_is_killed() {
    WindowStand window({});
    window.start();
    window.order({"click start_simulated"});
    QVERIFY(window.wait_until_ready());
    const qint64 id = window.stand.remote.process().processId();
    const auto meters = [id] {
        QList<pid_t> found;
        const QByteArray children =
            content_of(QStringLiteral("/proc/%1/task/%1/children").arg(id)).simplified();
        for (const QByteArray& child : children.split(' '))
            if (content_of("/proc/" + child + "/comm").trimmed() == "m47-meter")
                found += child.toInt();
        return found;
    };
    QTRY_COMPARE(meters().size(), 1);
    const pid_t meter = meters().constFirst();
    QCOMPARE(::kill(static_cast<pid_t>(id), SIGKILL), 0);
    window.stand.remote.wait();
    QTRY_VERIFY(::kill(meter, 0) != 0);
}

/// A terminal that closes tells its programs once itself and once through its shell.
void SignalTest::two_signals_at_once_are_one() {
    WindowStand window({"--fault-on", "DATAOUT", "--fault", "late", "--late", "1"});
    window.start();
    window.order({"trigger download", "type tmpfile logs.tmp", "click cmddownload"});
    QVERIFY(window.wait_for("DATAOUT"));
    for (const int number : {SIGHUP, SIGCONT, SIGHUP}) window.stand.remote.send_signal(number);
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 128 + SIGHUP);
    QVERIFY2(told(ending).startsWith("m47-remote: ended by SIGHUP: the download is whole in "),
             told(ending).constData());
    QVERIFY(QFile::exists(window.stand.path("LOGS.TMP")));
}

void SignalTest::a_hang_up_that_is_ignored() {
    WindowStand window({});
    window.stand.remote.start_in_shell(
        "trap '' HUP; exec \"$0\" \"$@\"",
        {"--port", "1=" + window.stand.meter.link(), "--on-port", "1"});
    window.order({"trigger realtime"});
    QVERIFY(window.wait_until_ready());
    window.stand.remote.send_signal(SIGHUP);
    window.order({"trigger program"});
    QVERIFY(window.wait_until_ready());
    window.stand.remote.send_signal(SIGINT);
    QCOMPARE(window.stand.remote.wait().status, 128 + SIGINT);
}

namespace {

const QStringList kPassesForEver{"--plan", "ROOF", "--passes", "0", "--log", "run.log"};

/// The options of each kind of unattended run.
void add_unattended_runs() {
    QTest::addColumn<QStringList>("options");
    QTest::newRow("frequency") << QStringList{"--freq", "1200",  "--count",
                                              "1000",   "--log", "run.log"};
    QTest::newRow("plan") << kPassesForEver;
    QTest::newRow("plan, between its passes") << kPassesForEver + QStringList{"--every", "1000"};
}

}  // namespace

void SignalTest::an_unattended_run_goes_on_data() {
    add_unattended_runs();
}

void SignalTest::an_unattended_run_goes_on() {
    QFETCH(const QStringList, options);
    WindowStand window({});
    RemoteProcess& remote = window.stand.remote;
    window.stand.start_measuring(options);
    QVERIFY(remote.wait_for_lines(2));
    shake(remote);
    QVERIFY(remote.wait_for_lines(5));
    shake(remote);
    remote.send_signal(SIGTERM);
    const Ending ending = remote.wait();
    QCOMPARE(ending.status, 0);
    QCOMPARE(ending.err, QByteArray());
    QCOMPARE(window.stand.content("run.log"), as_log(ending.out));
}

void SignalTest::an_unattended_run_is_told_to_end_data() {
    add_unattended_runs();
}

void SignalTest::an_unattended_run_is_told_to_end() {
    QFETCH(const QStringList, options);
    for (const EndSignal& signal : kEndSignals) {
        WindowStand window({});
        RemoteProcess& remote = window.stand.remote;
        window.stand.start_measuring(options);
        QVERIFY(remote.wait_for_lines(options.contains("--every") ? 5 : 2));
        const qint64 id = remote.process().processId();
        remote.send_signal(signal.number);
        const Ending ending = remote.wait();
        QCOMPARE(ending.status, 0);
        QCOMPARE(ending.err, QByteArray());
        QVERIFY(ending.out.endsWith('\n'));
        QCOMPARE(window.stand.content("run.log"), as_log(ending.out));
        QCOMPARE(window.damage(), QString());
        QCOMPARE(locks_of(id, window.stand.meter.link()), QStringList());
        if (!all_signals()) break;
    }
}

namespace {

/// Everything that an import may bring, name by name.
QStringList imported(const QString& database) {
    return cells_of(database, "SELECT nome FROM gruppo UNION ALL SELECT nome FROM asl");
}

/// Programs of plans that are not there, and plans without programs.
QStringList half_plans(const QString& database) {
    return cells_of(database,
                    "SELECT DISTINCT nome FROM programmi WHERE nome NOT IN (SELECT nome FROM "
                    "gruppo) UNION ALL SELECT nome FROM gruppo WHERE nome NOT IN (SELECT nome "
                    "FROM configurazione)");
}

const char* kImportEnd =
    "^m47-remote: ended by SIGTERM: (nothing had been imported|imported, each whole: plans \\d+, "
    "satellites \\d+)\n$";

}  // namespace

void SignalTest::an_import_is_told_to_end_data() {
    QTest::addColumn<int>("milliseconds");
    const QList<int> times = all_signals() ? QList<int>{0,  5,  10, 20,  30,  40,  50,  60,
                                                        70, 80, 90, 100, 120, 150, 200, 300}
                                           : QList<int>{0, 60};
    for (const int time : times) QTest::addRow("%d ms", time) << time;
}

namespace {

/// True as soon as it handles the signals that tell it to end.
bool listens(RemoteProcess& remote) {
    const QByteArray status =
        content_of(QStringLiteral("/proc/%1/status").arg(remote.process().processId()));
    const QByteArray caught =
        status.mid(status.indexOf("SigCgt:") + 7).trimmed().split('\n').first();
    return (caught.trimmed().toULongLong(nullptr, 16) >> (SIGTERM - 1) & 1) != 0;
}

}  // namespace

/// The instant is any; what came is whole, and told.
void SignalTest::an_import_is_told_to_end() {
    QFETCH(const int, milliseconds);
    WindowStand window({});
    RemoteProcess& remote = window.stand.remote;
    remote.start({"--import-database", OLD_DATABASE});
    // Before it listens a signal simply ends it; and it may be done before it is seen to listen.
    QVERIFY(QTest::qWaitFor(
        [&] { return listens(remote) || remote.process().state() == QProcess::NotRunning; },
        60000));
    QTest::qWait(milliseconds);
    remote.send_signal(SIGTERM);
    const Ending ending = remote.wait();
    if (ending.status != 0) {
        QCOMPARE(ending.status, 128 + SIGTERM);
        QVERIFY2(QRegularExpression(kImportEnd).match(told(ending)).hasMatch(),
                 told(ending).constData());
    }
    const QString database = window.stand.path("VKDM47_03.mdb");
    QCOMPARE(cells_of(database, "PRAGMA integrity_check"), QStringList{"ok"});
    QCOMPARE(half_plans(database), QStringList());
    QVERIFY(imported(database).contains("ROOF"));
}

void SignalTest::an_import_in_the_window_is_told_to_end() {
    WindowStand window({});
    window.start();
    window.order({"trigger cmdimportdb", QStringLiteral("file ") + OLD_DATABASE});
    QVERIFY(window.stand.remote.wait_for_lines(2));
    window.stand.remote.send_signal(SIGTERM);
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 128 + SIGTERM);
    QVERIFY2(QRegularExpression(kImportEnd).match(told(ending)).hasMatch(),
             told(ending).constData());
    const QString database = window.stand.path("VKDM47_03.mdb");
    QCOMPARE(half_plans(database), QStringList());
    const bool nothing = told(ending).contains("nothing");
    QCOMPARE(imported(database).size() == 1, nothing);
}

void SignalTest::printing_is_told_to_end() {
    WindowStand window({});
    const QByteArray row = "\t01/01/26\t10:00:00\t1200\t60\t-\t-\t-\t-\t-\tPASS\r\n";
    QFile log(window.stand.path("long.log"));
    QVERIFY(log.open(QIODevice::WriteOnly));
    log.write(row.repeated(200000));
    log.close();
    window.start();
    window.order({"trigger realtime", "trigger save", "file FOLDER/long.log"});
    QVERIFY(window.wait_until_ready());
    window.order({"trigger stampa", "print FOLDER/page.pdf"});
    const QDir folder(window.stand.path(QString()));
    QTRY_VERIFY_WITH_TIMEOUT(!folder.entryList({"*.part"}).isEmpty(), 60000);
    window.stand.remote.send_signal(SIGTERM);
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 128 + SIGTERM);
    QCOMPARE(told(ending).count('\n'), 1);
    QCOMPARE(folder.entryList({"*.pdf", "*.part"}), QStringList());
}

void SignalTest::help_into_a_closed_pipe() {
    EmptyStand stand;
    // The reader goes before a word is written.
    stand.remote.start_in_shell(
        "{ read -r go; \"$0\" --help; echo $? >ended; } | { exec 0<&-; exit; }", {});
    stand.remote.process().write("go\n");
    stand.remote.wait();
    QCOMPARE(stand.files().value("ended"), QByteArray("5\n"));
}

/// As under a quota of the shell, "ulimit -f".
void SignalTest::a_file_at_its_limit() {
    WindowStand window({});
    QFile older(window.stand.path("run.log"));
    const QByteArray line = QByteArray(98, '-') + "\r\n";
    QVERIFY(older.open(QIODevice::WriteOnly) && older.write(line.repeated(653)) > 0);
    older.close();
    window.stand.remote.start_in_shell(
        "ulimit -f 128; exec \"$0\" \"$@\"",
        window.stand.measuring({"--freq", "1200", "--count", "12", "--log", "run.log"}));
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 5);
    QCOMPARE(ending.err,
             QByteArray("m47-remote: the log run.log is not complete: File too large\n"));
    QCOMPARE(rows_of(ending.out).size(), 12);
    const QByteArray log = window.stand.content("run.log");
    QVERIFY(log.endsWith("\r\n"));
    QVERIFY(log.size() > 65300);
    QVERIFY(as_log(ending.out).startsWith(log.mid(65300)));
}

void SignalTest::a_download_at_its_limit() {
    WindowStand window({"--logger-bytes", "100000"});
    QFile older(window.stand.path("LOGS.TMP"));
    QVERIFY(older.open(QIODevice::WriteOnly) && older.write("older") == 5);
    older.close();
    window.stand.remote.start_in_shell(
        "ulimit -f 128; exec \"$0\" \"$@\"",
        {"--port", "1=" + window.stand.meter.link(), "--on-port", "1"});
    window.order({"trigger download", "type tmpfile logs.tmp", "click cmddownload"});
    QVERIFY(window.wait_for("DATAOUT"));
    QVERIFY(window.wait_until_ready());
    window.stand.remote.send_signal(SIGTERM);
    const Ending ending = window.stand.remote.wait();
    QCOMPARE(ending.status, 128 + SIGTERM);
    QCOMPARE(window.stand.content("LOGS.TMP"), QByteArray("older"));
    QCOMPARE(window.damage(), QString());
}

}  // namespace m47

QTEST_GUILESS_MAIN(m47::SignalTest)
#include "signal_test.moc"
