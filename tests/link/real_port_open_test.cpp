// SPDX-License-Identifier: GPL-3.0-or-later
// Ports that cannot be opened, and why.
#include "real_port_test.h"

namespace m47::link {

void RealPortTest::a_closed_port() {
    RealPort port;
    QVERIFY(!port.is_open());
    QVERIFY(!port.write('x'));
    QVERIFY(!port.wait_for_input(1s));
    QCOMPARE(port.read_all(), QByteArray());
    port.clear();
    port.close();
    QVERIFY(!port.open());
    QCOMPARE(port.fault(), PortFault::missing);
}

void RealPortTest::missing() {
    QCOMPARE(fault_on_open("/dev/ttyNothing"), PortFault::missing);
    QCOMPARE(fault_on_open(""), PortFault::missing);
    Setup s("/dev/ttyNothing");
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!s.link.send("ATTEN?"));
    QVERIFY(timer.elapsed() < 1000);
    QCOMPARE(s.view.state_text, QString("RS232 ComPort 1 NOT Connected"));
}

void RealPortTest::not_a_port() {
    QTemporaryDir folder;
    QFile file(folder.filePath("text"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(fault_on_open(file.fileName()), PortFault::not_a_port);
    QCOMPARE(fault_on_open("/dev/null"), PortFault::not_a_port);
}

void RealPortTest::busy_for_the_same_user() {
    const Pty pty;
    RealPort first;
    first.select(pty.path());
    QVERIFY(first.open());
    QCOMPARE(fault_on_open(pty.path()), PortFault::busy);
    QVERIFY(first.is_open());
    QVERIFY(first.write('x'));
    first.close();
    QCOMPARE(fault_on_open(pty.path()), PortFault::none);
}

void RealPortTest::busy_for_an_ordinary_user() {
    const Pty pty;
    QCOMPARE(fchmod(pty.slave(), 0666), 0);
    const auto fault_for_others = [&] {
        return as_ordinary_user([&] { return static_cast<int>(fault_on_open(pty.path())); });
    };
    QCOMPARE(fault_for_others(), static_cast<int>(PortFault::none));
    RealPort first;
    first.select(pty.path());
    QVERIFY(first.open());
    QCOMPARE(fault_for_others(), static_cast<int>(PortFault::busy));
    first.close();
    QCOMPARE(fault_for_others(), static_cast<int>(PortFault::none));
}

void RealPortTest::busy_under_a_lock() {
    // A second program of root's is not kept out by the exclusive flag.
    const Pty pty;
    QCOMPARE(flock(pty.slave(), LOCK_EX | LOCK_NB), 0);
    RealPort port;
    port.select(pty.path());
    QVERIFY(!port.open());
    QVERIFY(!port.is_open());
    QCOMPARE(port.fault(), PortFault::busy);
    QCOMPARE(flock(pty.slave(), LOCK_UN), 0);
    QVERIFY(port.open());
    QCOMPARE(port.fault(), PortFault::none);
}

void RealPortTest::busy_by_a_lock_file() {
    const Pty pty;
    QSerialPort other_program;
    other_program.setPortName(pty.path());
    QVERIFY(other_program.open(QIODevice::ReadWrite));
    QCOMPARE(fault_on_open(pty.path()), PortFault::busy);
    // Nor does another name for the device lead around the lock.
    QTemporaryDir folder;
    QVERIFY(QFile::link(pty.path(), folder.filePath("meter")));
    QCOMPARE(fault_on_open(folder.filePath("meter")), PortFault::busy);
    other_program.close();
    QCOMPARE(fault_on_open(pty.path()), PortFault::none);
}

void RealPortTest::no_permission() {
    const Pty pty;
    QCOMPARE(fchmod(pty.slave(), 0), 0);
    const int fault = as_ordinary_user([&] { return static_cast<int>(fault_on_open(pty.path())); });
    QCOMPARE(fault, static_cast<int>(PortFault::no_permission));
}

void RealPortTest::links_and_relative_paths() {
    const Pty pty;
    QTemporaryDir folder;
    QVERIFY(QFile::link(pty.path(), folder.filePath("meter")));
    QCOMPARE(fault_on_open(folder.filePath("meter")), PortFault::none);
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    RealPort port;
    port.select("./meter");
    QVERIFY(QDir::setCurrent(before));
    QVERIFY(port.open());
    port.close();
    port.select(QString(pty.path()).remove("/dev/").prepend("../dev/"));
    QCOMPARE(port.path(), QDir::cleanPath(before + "/../dev/" + pty.path().mid(5)));
}

void RealPortTest::opened_a_hundred_times() {
    const Pty pty;
    const auto descriptors = [] {
        return QDir("/proc/self/fd")
            .entryList(QDir::NoDotAndDotDot | QDir::System | QDir::Files)
            .size();
    };
    RealPort port;
    port.select(pty.path());
    // The first opening keeps the node, to know the device again.
    QVERIFY(port.open());
    port.close();
    const auto before = descriptors();
    for (int i = 0; i < 100; ++i) {
        QVERIFY(port.open());
        QVERIFY(port.write('x'));
        port.close();
    }
    QCOMPARE(descriptors(), before);
}

void RealPortTest::another_device_behind_the_link() {
    const Pty meter;
    const Pty other;
    QTemporaryDir folder;
    const QString link = folder.filePath("meter");
    QVERIFY(QFile::link(meter.path(), link));
    Setup s(link);
    QVERIFY(s.port.open());
    s.port.close();
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link(other.path(), link));
    // Not even when it is tried again, and no byte goes out to the other one.
    for (int i = 0; i < 2; ++i) {
        s.link.port_connected = true;
        QVERIFY(!s.link.send("LEVANL?"));
        QVERIFY(!s.port.is_open());
        QCOMPARE(s.port.fault(), PortFault::another_device);
    }
    QCOMPARE(other.take(1, 50), QByteArray());
    // The way back to the meter itself is open.
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link(meter.path(), link));
    QVERIFY(s.port.open());
    s.port.close();
    // Chosen anew, whatever is there counts.
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link(other.path(), link));
    s.port.select(link);
    QVERIFY(s.port.open());
    s.port.close();
    QVERIFY(s.port.open());
}

void RealPortTest::a_number_given_to_another_device() {
    for (int attempt = 0; attempt < 20; ++attempt) {
        auto meter = std::make_unique<Pty>();
        RealPort port;
        port.select(meter->path());
        QVERIFY(port.open());
        port.close();
        const QString path = meter->path();
        meter.reset();
        const std::unique_ptr<Pty> other = pty_at(path);
        if (!other) continue;
        QVERIFY(!port.open());
        QCOMPARE(port.fault(), PortFault::another_device);
        port.select(path);
        QVERIFY(port.open());
        return;
    }
    QSKIP("other processes take each number that becomes free");
}

void RealPortTest::a_touched_device_is_the_same() {
    const Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    port.close();
    // Time stamps of devices go by the tick of the system.
    std::this_thread::sleep_for(20ms);
    QCOMPARE(fchmod(pty.slave(), 0666), 0);
    QCOMPARE(fchown(pty.slave(), geteuid(), getegid()), 0);
    QCOMPARE(futimens(pty.slave(), nullptr), 0);
    QVERIFY(port.open());
    QVERIFY(port.write('x'));
    QCOMPARE(pty.take(1), QByteArray("x"));
    port.close();
    QVERIFY(port.open());
}

void RealPortTest::an_adapter_behind_a_node_that_stays() {
    const Pty pty;
    struct stat node {};
    QCOMPARE(fstat(pty.slave(), &node), 0);
    QTemporaryDir sys;
    const QString devices = sys.filePath("dev/char");
    const QString name = QString("%1:%2").arg(major(node.st_rdev)).arg(minor(node.st_rdev));
    QVERIFY(QDir().mkpath(devices + "/" + name));
    platform::KnownDevice device(sys.path());
    const auto is_the_same = [&] { return device.is_the_same(pty.slave(), pty.path()); };
    QVERIFY(is_the_same());
    QVERIFY(is_the_same());
    // Unplugged, and another one plugged in, while nobody looked.
    QVERIFY(QDir(devices).rename(name, "gone"));
    QVERIFY(!is_the_same());
    QVERIFY(QDir(devices).mkdir(name));
    QVERIFY(!is_the_same());
    device.forget();
    QVERIFY(is_the_same());
}

}  // namespace m47::link
