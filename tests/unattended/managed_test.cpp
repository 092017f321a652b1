// SPDX-License-Identifier: GPL-3.0-or-later
// A run that a service manager has started: its configuration file, and what it tells.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <stdexcept>

#include "exit_status.h"
#include "fault.h"
#include "last_resort.h"
#include "options.h"
#include "service_manager.h"
#include "service_notes.h"
#include "told_lines.h"
#include "virtual_clock.h"

namespace m47::unattended {

class ManagedTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void keys_are_options();
    void the_command_line_goes_before_the_file();
    void faults_have_their_line_data();
    void faults_have_their_line();
    void a_check_tells_every_fault();
    void a_file_that_cannot_be_read();
    void it_is_read_again_where_it_was();
    void what_a_manager_is_told();
    void without_a_manager_nothing_is_told();
    void a_datagram_to_the_socket();
    void a_fault_that_nobody_trapped_ends_it_in_words();

  private:
    QString write(const QByteArray& content) const;
    Options read(const QByteArray& content, const QStringList& more = {}) const;

    QTemporaryDir folder_;
    const Offer probe_{.program = QStringLiteral("m47-probe"), .only_measures = true};
};

QString ManagedTest::write(const QByteArray& content) const {
    QFile file(folder_.filePath("p.conf"));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write");
    return file.fileName();
}

Options ManagedTest::read(const QByteArray& content, const QStringList& more) const {
    return parse_options(QStringList{"--config", write(content)} + more, probe_);
}

void ManagedTest::keys_are_options() {
    const Options options = read(
        "# the roof\n; of today\n\n  on-port=1\nport = 1=/dev/a\nport = 2=/dev/b\r\n"
        "plan = \" ROOF\"\nreconnect\nfull-tune = yes\nconfirm = no\nevery = 60\n"
        "alarm = level\nalarm = mer\nformat = json\nsite = Condominio \xC3\x88toile");
    QCOMPARE(options.error, QString());
    QCOMPARE(options.on_port, 1);
    QCOMPARE(options.ports, QStringList({"1=/dev/a", "2=/dev/b"}));
    QCOMPARE(options.plan, QStringLiteral(" ROOF"));
    QVERIFY(options.reconnect && options.full_tune && !options.confirm);
    QCOMPARE(options.every, 60);
    QCOMPARE(options.alarms.size(), 2);
    QVERIFY(options.format == measurement::OutputFormat::json);
    QCOMPARE(options.visit.site, QStringLiteral("Condominio \u00C8toile"));
    QCOMPARE(options.configuration, folder_.filePath("p.conf"));
}

void ManagedTest::the_command_line_goes_before_the_file() {
    const QByteArray file = "on-port = 1\nport = 1=/dev/a\ndigital = yes\ncount = 5\n";
    const Options options =
        read(file, {"--count", "7", "--analog", "--port", "1=/dev/c", "--freq", "1000"});
    QCOMPARE(options.error, QString());
    QCOMPARE(options.count, 7);
    QVERIFY(!options.digital);
    QCOMPARE(options.ports, QStringList({"1=/dev/c"}));
    // What is wrong there is not the file's.
    QCOMPARE(read(file, {"--count", "x"}).error,
             QStringLiteral("--count takes a whole number from 1 to 1000000000, not \"x\""));
}

void ManagedTest::faults_have_their_line_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char* name, const char* content, const char* fault) {
        QTest::newRow(name) << QByteArray(content) << QString::fromLatin1(fault);
    };
    row("unknown", "on-port = 1\ninterval = 3\n", ":2: there is no key \"interval\"");
    row("of the command line", "config = a\n", ":1: there is no key \"config\"");
    row("section", "[probe]\n", ":1: there are no sections, \"[probe]\"");
    row("no value", "\non-port\n", ":2: the key \"on-port\" needs a value behind \"=\"");
    row("no switch", "digital = 7\n", ":1: the key \"digital\" takes yes or no, not \"7\"");
    row("bad value", "on-port = 11\n",
        ":1: --on-port takes a whole number from 1 to 10, not \"11\"");
    row("the second of two", "on-port = 1\nport = 1=/dev/a\nport = x\n",
        ":3: --port takes N=DEVICE with N from 1 to 10, not \"x\"");
    row("given twice", "on-port = 1\nevery = 1\nevery = 2\n",
        ":3: --every is given twice, as \"1\" and as \"2\"");
    row("no text", "on-port = 1\nsite = Sole \xE8\n", ":2: the line is no text in UTF-8");
    row("not together", "on-port = 1\n\npasses = 3\n", ":3: --passes needs --plan");
    row("of the windows", "on-port = 1\nscreenshot = a.png\n",
        ":2: --screenshot does not go with m47-probe");
}

void ManagedTest::faults_have_their_line() {
    QFETCH(QByteArray, content);
    QFETCH(QString, fault);
    const Options options = read(content);
    QCOMPARE(options.action, Options::Action::wrong);
    QCOMPARE(options.error, folder_.filePath("p.conf") + fault);
}

void ManagedTest::a_check_tells_every_fault() {
    const Options bad = read(
        "on-port = 99\npasses = 2\nport = 1\nwhat = 1\nport = 2\nplan =\nevery = 1\n"
        "full-tune = maybe\n",
        {"--check-config"});
    QCOMPARE(bad.action, Options::Action::check);
    QStringList lines;
    for (const QString& fault : bad.faults)
        lines += fault.mid(folder_.filePath("p.conf:").size()).section(u':', 0, 0);
    QCOMPARE(lines, QStringList({"1", "3", "4", "5", "6", "8"}));
    const Options good = read("on-port = 1\nplan = ROOF\n", {"--check-config"});
    QCOMPARE(good.action, Options::Action::check);
    QCOMPARE(good.faults, QStringList());
    QCOMPARE(read("every = 3\nplan = A\n", {"--check-config"}).faults,
             QStringList({"m47-probe needs --on-port"}));
    // What the run would end with before it measures.
    const QString file = folder_.filePath("p.conf");
    for (const char* directory : {"", "directory = .\n"}) {
        const QByteArray head = "on-port = 1\nplan = A\n" + QByteArray(directory);
        const QString line = QString::number(head.count('\n') + 1);
        QCOMPARE(read(head + "log = VKDM47_03.mdb\n", {"--check-config"}).faults,
                 QStringList(file + u':' + line + ": --log names the database: VKDM47_03.mdb"));
        QCOMPARE(
            read(head + "log = x.log\ntrace = ./x.log\n", {"--check-config"}).faults,
            QStringList(file + u':' + line + ": --log and --trace name the same file: ./x.log"));
        QCOMPARE(read(head + "log = x.log\ntrace = y.log\n", {"--check-config"}).faults,
                 QStringList());
    }
    QCOMPARE(parse_options({"--check-config", "--on-port", "1"}, probe_).error,
             QStringLiteral("--check-config needs --config"));
}

void ManagedTest::a_file_that_cannot_be_read() {
    const QString none = folder_.filePath("none.conf");
    QCOMPARE(parse_options({"--config", none}, probe_).error,
             "cannot read " + none + ": No such file or directory");
    QCOMPARE(parse_options({"--config", folder_.path()}, probe_).error,
             "cannot read " + folder_.path() + ": not a plain file");
    QCOMPARE(parse_options({"--config", none, "--check-config"}, probe_).faults.size(), 1);
    QCOMPARE(parse_options({"--config", ""}, probe_).error,
             QStringLiteral("--config takes a name, not an empty one"));
    // Without --measure it would be read for nothing.
    const Offer remote{.program = QStringLiteral("m47-remote")};
    QCOMPARE(parse_options({"--config", write("on-port = 1\n")}, remote).error,
             QStringLiteral("--config goes with --measure only"));
    QVERIFY(parse_options({"--config", write("on-port = 1\nmeasure = yes\n")}, remote).measure);
}

void ManagedTest::it_is_read_again_where_it_was() {
    const QString before = QDir::currentPath();
    write("on-port = 1\n");
    QVERIFY(QDir::setCurrent(folder_.path()));
    const Options options = parse_options({"--config", "p.conf", "--count", "2"}, probe_);
    QVERIFY(QDir::setCurrent(before));
    write("on-port = 3\n");
    const Options again = options.read_again();
    QCOMPARE(again.error, QString());
    QCOMPARE(again.on_port, 3);
    QCOMPARE(again.count, 2);
    QVERIFY(again.read_again);
}

void ManagedTest::what_a_manager_is_told() {
    VirtualClock clock;
    QByteArrayList told;
    ServiceNotes notes(clock,
                       {[&](const QByteArray& lines) { told += lines; }, std::chrono::seconds(30)});
    // It waits for nothing before it was told that the run is ready.
    notes.alive();
    QCOMPARE(told, QByteArrayList());
    notes.ready();
    notes.ready();
    QCOMPARE(told, QByteArrayList({"READY=1", "WATCHDOG=1"}));
    told.clear();
    for (int exchange = 0; exchange < 300; ++exchange) {
        notes.alive();
        clock.sleep(0.2);
    }
    QCOMPARE(told, QByteArrayList(
                       {"WATCHDOG=1", "WATCHDOG=1", "WATCHDOG=1", "WATCHDOG=1", "WATCHDOG=1"}));
    told.clear();
    notes.status("pass 1");
    notes.status("pass 2");
    notes.status("lost\nagain", true);
    clock.sleep(6);
    notes.status("pass 3");
    notes.status("pass 3");
    notes.stopping();
    QCOMPARE(told,
             QByteArrayList({"STATUS=pass 1", "STATUS=lost again", "STATUS=pass 3", "STOPPING=1"}));
}

void ManagedTest::without_a_manager_nothing_is_told() {
    qunsetenv("NOTIFY_SOCKET");
    QVERIFY(!ServiceNotes::found().tell);
    QVERIFY(!platform::tell_service_manager("READY=1"));
    qputenv("NOTIFY_SOCKET", folder_.filePath("nobody").toUtf8());
    QVERIFY(!platform::tell_service_manager("READY=1"));
    qputenv("NOTIFY_SOCKET", QByteArray(300, '/'));
    QVERIFY(!platform::tell_service_manager("READY=1"));
    qunsetenv("NOTIFY_SOCKET");
}

void ManagedTest::a_datagram_to_the_socket() {
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = folder_.filePath("notify").toUtf8();
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    QCOMPARE(bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    qputenv("NOTIFY_SOCKET", path);
    qputenv("WATCHDOG_USEC", "20000000");
    const ServiceNotes::Manager manager = ServiceNotes::found();
    manager.tell("READY=1");
    char text[64];
    QCOMPARE(recv(descriptor, text, sizeof text, 0), ssize_t{7});
    QCOMPARE(QByteArray(text, 7), QByteArray("READY=1"));
    QCOMPARE(manager.watchdog->count(), 20'000'000);
    qputenv("WATCHDOG_PID", "1");
    QVERIFY(!platform::watchdog_time());
    qputenv("WATCHDOG_PID", QByteArray::number(getpid()));
    QVERIFY(platform::watchdog_time());
    for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"}) qunsetenv(name);
    close(descriptor);
}

void ManagedTest::a_fault_that_nobody_trapped_ends_it_in_words() {
    QCOMPARE(with_last_resort([] { return int(kAlarmFailed); }), int(kAlarmFailed));
    QCOMPARE(with_last_resort([]() -> int { throw Fault("the plan is not open"); }),
             int(kIncomplete));
    QVERIFY(told_lines().lines().constLast().endsWith("m47.end the plan is not open"));
    bool closed = false;
    const auto fault_amid_work = [&]() -> int {
        const std::unique_ptr<bool, void (*)(bool*)> open(&closed, [](bool* end) { *end = true; });
        throw std::length_error("vector::reserve");
    };
    QCOMPARE(with_last_resort(fault_amid_work), int(kIncomplete));
    QVERIFY(closed);
    QVERIFY(told_lines().lines().constLast().endsWith("an unexpected fault: vector::reserve"));
}

}  // namespace m47::unattended

QTEST_GUILESS_MAIN(m47::unattended::ManagedTest)
#include "managed_test.moc"
