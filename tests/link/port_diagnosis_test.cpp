// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_diagnosis.h"

#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <memory>

#include "fake_link_view.h"
#include "fake_port.h"
#include "fault.h"
#include "port_claim.h"
#include "port_lock.h"
#include "port_search.h"
#include "pty.h"

namespace m47::link {

namespace {

/// Another process that has claimed a device until it is killed.
class OtherStart {
  public:
    OtherStart(const QString& device, const QString& folder) {
        std::array<int, 2> ready{};
        if (pipe(ready.data()) != 0) qFatal("no pipe");
        process_ = fork();
        if (process_ == 0) {
            PortClaim claim({folder});
            const char taken = claim.take(device) ? 'y' : 'n';
            if (write(ready[1], &taken, 1) != 1) _exit(1);
            for (;;) pause();
        }
        char taken = 'n';
        if (read(ready[0], &taken, 1) != 1 || taken != 'y') qFatal("not claimed");
        close(ready[0]);
        close(ready[1]);
    }
    ~OtherStart() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    OtherStart(const OtherStart&) = delete;
    OtherStart& operator=(const OtherStart&) = delete;

    pid_t process() const { return process_; }

  private:
    pid_t process_ = 0;
};

}  // namespace

class PortDiagnosisTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void paths();
    void a_line_ready_for_use();
    void a_missing_device();
    void no_port();
    void without_permission();
    void held_by_another_program();
    void held_under_a_lock();
    void claimed_by_another_start();
    void a_claim_ends_with_its_process();
    void a_number_given_again_is_another_device();
    void what_needs_no_claim();
    void texts_name_device_and_help();
    void texts_in_italian();
    void the_group_that_may_use_the_device();
    void a_group_that_may_not_use_it_is_not_named();
    void a_search_asks_each_free_port_in_turn();
    void a_search_leaves_alone_what_another_program_has();
    void who_has_a_device_open_is_named();
    void a_search_is_stopped_between_two_ports();

  private:
    /// The ports that a search over `devices`, numbered from 1, asks; the one in `answers` is
    /// found.
    QList<int> searched(const QStringList& devices, int answers, PortSearch::Result& result);

    QString make_file(const QString& name, QFile::Permissions permissions) const;

    QTemporaryDir folder_;
};

QString PortDiagnosisTest::make_file(const QString& name, QFile::Permissions permissions) const {
    QFile file(folder_.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(permissions)) return {};
    return file.fileName();
}

void PortDiagnosisTest::paths() {
    QCOMPARE(device_path(""), QString());
    QCOMPARE(device_path("/dev/ttyUSB0"), QString("/dev/ttyUSB0"));
    QCOMPARE(device_path("ttyUSB0"), QString("/dev/ttyUSB0"));
    QCOMPARE(device_path("./link"), QDir::currentPath() + "/link");
    QCOMPARE(device_path("a/../b/link"), QDir::currentPath() + "/b/link");
    const QString before = QDir::currentPath();
    QVERIFY(!make_file("meter", QFile::ReadOwner).isEmpty());
    QVERIFY(QDir::setCurrent(folder_.path()));
    QCOMPARE(device_path("meter"), QDir::currentPath() + "/meter");
    QVERIFY(QDir::setCurrent(before));
}

void PortDiagnosisTest::a_line_ready_for_use() {
    const Pty pty;
    QCOMPARE(look_at(pty.path()), PortFault::none);
    const QString link = folder_.filePath("symlink");
    QVERIFY(QFile::link(pty.path(), link));
    QCOMPARE(look_at(link), PortFault::none);
    // Looking leaves no lock behind.
    QCOMPARE(look_at(pty.path()), PortFault::none);
}

void PortDiagnosisTest::a_missing_device() {
    QCOMPARE(look_at(""), PortFault::missing);
    QCOMPARE(look_at("/dev/ttyNothing"), PortFault::missing);
    QCOMPARE(look_at("/dev/null/x"), PortFault::missing);
    const QString dangling = folder_.filePath("dangling");
    QVERIFY(QFile::link(folder_.filePath("unplugged"), dangling));
    QCOMPARE(look_at(dangling), PortFault::missing);
}

void PortDiagnosisTest::no_port() {
    QCOMPARE(look_at(make_file("text", QFile::ReadOwner | QFile::WriteOwner)),
             PortFault::not_a_port);
    QCOMPARE(look_at("/dev/null"), PortFault::not_a_port);
    QCOMPARE(look_at(folder_.path()), PortFault::not_a_port);
}

void PortDiagnosisTest::without_permission() {
    const Pty pty;
    QCOMPARE(fchmod(pty.slave(), 0), 0);
    const int fault = as_ordinary_user([&] { return static_cast<int>(look_at(pty.path())); });
    QCOMPARE(fault, static_cast<int>(PortFault::no_permission));
}

void PortDiagnosisTest::held_by_another_program() {
    const Pty pty;
    QCOMPARE(fchmod(pty.slave(), 0666), 0);
    QCOMPARE(ioctl(pty.slave(), TIOCEXCL), 0);
    const int fault = as_ordinary_user([&] { return static_cast<int>(look_at(pty.path())); });
    QCOMPARE(fault, static_cast<int>(PortFault::busy));
}

void PortDiagnosisTest::held_under_a_lock() {
    const Pty pty;
    QCOMPARE(flock(pty.slave(), LOCK_EX | LOCK_NB), 0);
    QCOMPARE(look_at(pty.path()), PortFault::busy);
    QCOMPARE(flock(pty.slave(), LOCK_UN), 0);
    QCOMPARE(look_at(pty.path()), PortFault::none);
}

void PortDiagnosisTest::claimed_by_another_start() {
    const Pty pty;
    const QString link = folder_.filePath("to-the-meter");
    QVERIFY(QFile::link(pty.path(), link));
    const OtherStart other(pty.path(), folder_.path());
    PortClaim claim({folder_.path()});
    const auto descriptors = [] {
        return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
    };
    const qsizetype before = descriptors();
    // By another path to the same device, and as often as it is tried.
    for (const QString& path : {link, pty.path(), link}) {
        QVERIFY(!claim.take(path));
        QVERIFY(claim.holder());
        QCOMPARE(claim.holder()->process, other.process());
    }
    QCOMPARE(descriptors(), before);
    const QString name = claim.holder()->program;
    QVERIFY(!name.isEmpty());
    Texts texts;
    QCOMPARE(claim_text(*claim.holder(), link, texts),
             QStringLiteral("%1 is in use by %2 (process %3). End that program or choose another "
                            "port.")
                 .arg(link, name)
                 .arg(other.process()));
    texts.language = kItalian;
    QVERIFY(claim_text(*claim.holder(), link, texts).contains("(processo "));
    const Pty free;
    QVERIFY(claim.take(free.path()));
    QVERIFY(!claim.holder());
}

void PortDiagnosisTest::a_claim_ends_with_its_process() {
    const Pty pty;
    const QTemporaryDir locks;
    // As the folder of the system's lock files is: each may make its own, none remove another's.
    QCOMPARE(chmod(QFile::encodeName(locks.path()).constData(), 01777), 0);
    PortClaim claim({locks.path()});
    const auto refused_to_another_user = [&] {
        return as_ordinary_user([&] {
            PortClaim theirs({locks.path()});
            return theirs.take(pty.path()) ? 0 : 1;
        });
    };
    {
        const OtherStart other(pty.path(), locks.path());
        QVERIFY(!claim.take(pty.path()));
    }
    // It was killed: its file is still there, and holds nobody off.
    const QStringList left = QDir(locks.path()).entryList({"*.lock"});
    QCOMPARE(left.size(), 1);
    QCOMPARE(refused_to_another_user(), 0);
    QVERIFY(claim.take(pty.path()));
    claim.release();
    QCOMPARE(QDir(locks.path()).entryList({"*.lock"}), QStringList());
    QVERIFY(claim.take(pty.path()));
    QCOMPARE(refused_to_another_user(), 1);
}

void PortDiagnosisTest::a_number_given_again_is_another_device() {
    const QTemporaryDir locks;
    const auto claimed = [&](const Pty& pty) {
        PortClaim claim({locks.path()});
        return claim.take(pty.path()) ? QDir(locks.path()).entryList({"*.lock"}) : QStringList();
    };
    auto gone = std::make_unique<Pty>();
    const QString path = gone->path();
    const QStringList before = claimed(*gone);
    QCOMPARE(before.size(), 1);
    QCOMPARE(claimed(*gone), before);
    gone.reset();
    const Pty next;
    if (next.path() != path) QSKIP("another process has taken the number meanwhile");
    QCOMPARE(claimed(next).size(), 1);
    QVERIFY(claimed(next) != before);
}

void PortDiagnosisTest::what_needs_no_claim() {
    PortClaim claim({folder_.path()});
    QVERIFY(claim.take("/dev/no-such-line"));
    QVERIFY(claim.take(make_file("no-device", QFile::ReadOwner)));
    QVERIFY(claim.take(QString()));
    // Where no claim can be written none is needed to go on; the second folder is tried first.
    const Pty pty;
    PortClaim nowhere({"/nonexistent"});
    QVERIFY(nowhere.take(pty.path()));
    const OtherStart other(pty.path(), folder_.path());
    PortClaim second({"/nonexistent", folder_.path()});
    QVERIFY(!second.take(pty.path()));
}

void PortDiagnosisTest::texts_name_device_and_help() {
    const Texts texts;
    const auto text = [&](PortFault fault) { return port_fault_text(fault, "/dev/ttyX", texts); };
    QCOMPARE(text(PortFault::none), QString());
    QCOMPARE(text(PortFault::missing), QString("There is no device /dev/ttyX."));
    QCOMPARE(text(PortFault::busy), QString("/dev/ttyX is used by another program."));
    QCOMPARE(text(PortFault::not_a_port), QString("/dev/ttyX is no serial port."));
    QCOMPARE(text(PortFault::vanished),
             QString("The line to /dev/ttyX was lost: the device has been unplugged."));
    QCOMPARE(text(PortFault::another_device),
             QString("Another device stands behind /dev/ttyX now, or it was plugged in anew. Check "
                     "that it is the right meter, then reconnect."));
    QCOMPARE(text(PortFault::other), QString("/dev/ttyX cannot be opened."));
    QCOMPARE(port_fault_text(PortFault::missing, {}, texts),
             QString("No device stands behind this port number."));
}

void PortDiagnosisTest::texts_in_italian() {
    Texts texts;
    texts.language = kItalian;
    const auto text = [&](PortFault fault) { return port_fault_text(fault, "/dev/ttyX", texts); };
    QCOMPARE(text(PortFault::missing), QString("Il dispositivo /dev/ttyX non esiste."));
    QVERIFY(text(PortFault::another_device).startsWith("Dietro /dev/ttyX c'è ora un altro "));
    QCOMPARE(text(PortFault::busy), QStringLiteral("/dev/ttyX è usato da un altro programma."));
    QCOMPARE(text(PortFault::no_permission), QString("Non hai il permesso di usare /dev/ttyX."));
}

void PortDiagnosisTest::the_group_that_may_use_the_device() {
    using Permission = QFile::Permission;
    const QString device = make_file("grouped", Permission::ReadOwner | Permission::WriteOwner |
                                                    Permission::ReadGroup | Permission::WriteGroup);
    const QString group = QFileInfo(device).group();
    const QString user = QFileInfo(device).owner();
    Texts texts;
    QCOMPARE(port_fault_text(PortFault::no_permission, device, texts),
             QStringLiteral("You have no permission to use %1. It belongs to the group %2: run "
                            "\"sudo usermod -aG %2 %3\", then log in again.")
                 .arg(device, group, user));
    texts.language = kItalian;
    QVERIFY(port_fault_text(PortFault::no_permission, device, texts)
                .contains(QStringLiteral("\"sudo usermod -aG %1 %2\", poi").arg(group, user)));
}

void PortDiagnosisTest::a_group_that_may_not_use_it_is_not_named() {
    const QString device = make_file("private", QFile::ReadOwner | QFile::WriteOwner);
    const QString text = port_fault_text(PortFault::no_permission, device, Texts());
    QCOMPARE(text, QStringLiteral("You have no permission to use %1.").arg(device));
}

QList<int> PortDiagnosisTest::searched(const QStringList& devices, int answers,
                                       PortSearch::Result& result) {
    VirtualClock clock;
    FakePort port(clock);
    FakeLinkView view;
    Link link(port, clock, view);
    PortList ports({"/nonexistent", "/nonexistent", [] { return QStringList(); }});
    for (int k = 0; k < devices.size(); ++k)
        if (!ports.add(QStringLiteral("%1=%2").arg(k + 1).arg(devices[k]))) qFatal("no entry");
    QList<int> asked;
    const Texts texts;
    PortSearch search(link, ports, texts);
    search.identify = [&](int number) {
        asked += number;
        link.port_connected = number == answers;
    };
    result = search.run();
    return asked;
}

void PortDiagnosisTest::a_search_asks_each_free_port_in_turn() {
    const Pty one;
    const Pty two;
    const Pty three;
    PortSearch::Result result;
    const QStringList devices{one.path(), folder_.filePath("gone"), two.path(), "/dev/null",
                              three.path()};
    QCOMPARE(searched(devices, 3, result), QList<int>({1, 3}));
    QCOMPARE(result.found, 3);
    QCOMPARE(search_text(result, Texts()), QString());
    QCOMPARE(searched(devices, 0, result), QList<int>({1, 3, 5}));
    QCOMPARE(result.found, 0);
    QCOMPARE(result.asked, 3);
    const QStringList told = search_text(result, Texts()).split('\n');
    QCOMPARE(told.size(), 3);
    QVERIFY(told[0].startsWith("No meter answered"));
    QVERIFY2(told[1].startsWith("Port 2 was not asked: There is no device"), qPrintable(told[1]));
    QVERIFY2(told[2].startsWith("Port 4 was not asked: /dev/null"), qPrintable(told[2]));
    QCOMPARE(searched({"/dev/null"}, 1, result), QList<int>());
    QVERIFY(search_text(result, Texts()).startsWith("No port could be asked"));
}

/// A program that only says so in a lock file.
void PortDiagnosisTest::a_search_leaves_alone_what_another_program_has() {
    const Pty pty;
    const QString lock = lock_file_of(pty.path());
    QVERIFY(!lock.isEmpty());
    QFile file(lock);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::number(getppid()).rightJustified(10) + '\n');
    file.close();
    PortSearch::Result result;
    const QList<int> asked = searched({pty.path()}, 1, result);
    QFile::remove(lock);
    QCOMPARE(asked, QList<int>());
    QCOMPARE(result.left_alone.size(), 1);
    QVERIFY2(result.left_alone[0].startsWith("Port 1 was not asked: " + pty.path() +
                                             " is used by another program. It is "),
             qPrintable(result.left_alone[0]));
}

/// Nor does it say so anywhere: it has the device open.
void PortDiagnosisTest::who_has_a_device_open_is_named() {
    const QString device = make_file("adapter", QFile::ReadOwner | QFile::WriteOwner);
    QCOMPARE(other_user_text(device, Texts()), QString());
    QProcess other;
    other.start("tail", {"-f", device});
    QVERIFY(other.waitForStarted());
    const QDeadlineTimer patience(10000);
    while (other_user_text(device, Texts()).isEmpty() && !patience.hasExpired()) QThread::msleep(5);
    QCOMPARE(other_user_text(device, Texts()),
             QStringLiteral("%1 is open in another process: tail, number %2. End that or choose "
                            "another port.")
                 .arg(device)
                 .arg(other.processId()));
    // The same by a link, as adapters have them.
    const QString link = folder_.filePath("by-id");
    QVERIFY(QFile::link(device, link));
    QVERIFY(other_user_text(link, Texts()).startsWith(link + " is open in another process"));
    other.kill();
    QVERIFY(other.waitForFinished());
    QCOMPARE(other_user_text(device, Texts()), QString());
}

void PortDiagnosisTest::a_search_is_stopped_between_two_ports() {
    const Pty one;
    const Pty two;
    VirtualClock clock;
    FakePort port(clock);
    FakeLinkView view;
    Link link(port, clock, view);
    PortList ports({"/nonexistent", "/nonexistent", [] { return QStringList(); }});
    QVERIFY(ports.add("1=" + one.path()) && ports.add("2=" + two.path()));
    QStringList told;
    QStringList shown;
    link.activity.on_stopped = [&](const Said& how_far) { told += how_far.in(Texts()); };
    link.activity.on_change = [&] { shown += activity_text(link.activity, Texts()); };
    const Texts texts;
    PortSearch search(link, ports, texts);
    QList<int> asked;
    search.identify = [&](int number) {
        asked += number;
        link.activity.stop();
    };
    QVERIFY_THROWS_EXCEPTION(Interrupted, search.run());
    QCOMPARE(asked, QList<int>{1});
    QCOMPARE(told, QStringList{"the meter was not found on 1 of 2 ports"});
    QCOMPARE(shown.first(), QString("Looking for the meter on port 1 (1 of 2)"));
}

}  // namespace m47::link

QTEST_APPLESS_MAIN(m47::link::PortDiagnosisTest)
#include "port_diagnosis_test.moc"
