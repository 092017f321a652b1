// SPDX-License-Identifier: GPL-3.0-or-later
#include "real_port_test.h"

namespace m47::link {

void RealPortTest::a_lock_file_that_nobody_holds_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<PortFault>("fault");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("of a process that has ended")
        << QByteArray("99999999\nminicom\nhost\n") << PortFault::lock_left_behind
        << "No program uses";
    QTest::newRow("empty") << QByteArray("") << PortFault::lock_names_nobody << "names no program";
    QTest::newRow("no lock file") << QByteArray("hello\n") << PortFault::lock_names_nobody
                                  << "names no program";
    QTest::newRow("a link to nowhere")
        << QByteArray() << PortFault::lock_leads_nowhere << "leads nowhere";
    QTest::newRow("of a process that runs, as other programs write it")
        << QByteArray::number(getpid()).rightJustified(10, ' ') + "\n"
        << PortFault::busy << "is used by another program. It is ";
}

void RealPortTest::a_lock_file_that_nobody_holds() {
    QFETCH(const QByteArray, content);
    QFETCH(const PortFault, fault);
    QFETCH(const QString, sentence);
    const Pty pty;
    QCOMPARE(fchmod(pty.slave(), 0666), 0);
    const QString path = lock_file_of(pty.path());
    const bool put =
        content.isNull() ? QFile::link("/nonexistent/lock", path) : put_file(path, content);
    QVERIFY2(put, qPrintable(path));
    const int seen = as_ordinary_user([&] { return static_cast<int>(fault_on_open(pty.path())); });
    const QString text = port_fault_text(fault, pty.path(), Texts());
    QVERIFY(QFile::remove(path));
    if (geteuid() != 0 && fault != PortFault::busy) QSKIP("an own lock file is removed at once");
    QCOMPARE(static_cast<PortFault>(seen), fault);
    QVERIFY2(text.contains(sentence), qPrintable(text));
    QVERIFY2(fault == PortFault::busy || !text.contains("another program"), qPrintable(text));
    QCOMPARE(fault_on_open(pty.path()), PortFault::none);
}

/// The serial library would wait for a pipe, and read a device or a huge file to its end.
void RealPortTest::what_is_no_file_in_the_place_of_the_lock_file() {
    const Pty pty;
    QCOMPARE(fchmod(pty.slave(), 0666), 0);
    const QString path = lock_file_of(pty.path());
    const QByteArray name = QFile::encodeName(path);
    const auto refused = [&] {
        const int seen = as_ordinary_user([&] {
            alarm(10);
            return static_cast<int>(fault_on_open(pty.path()));
        });
        return static_cast<PortFault>(seen) == PortFault::lock_names_nobody;
    };
    QCOMPARE(mkfifo(name.constData(), 0666), 0);
    const bool pipe_refused = refused();
    QVERIFY(QFile::remove(path));
    QVERIFY(QFile::link("/dev/zero", path));
    const bool device_refused = refused();
    QVERIFY(QFile::remove(path));
    QVERIFY(pipe_refused);
    QVERIFY(device_refused);
    QCOMPARE(fault_on_open(pty.path()), PortFault::none);
}

void RealPortTest::a_lock_file_of_a_program_that_has_the_port_data() {
    QTest::addColumn<QByteArray>("form");
    QTest::newRow("number alone") << QByteArray("%1\n");
    QTest::newRow("number, program and user") << QByteArray("%1 sleep root\n");
}

/// As other programs write it: the number in ten places, with or without names behind it.
void RealPortTest::a_lock_file_of_a_program_that_has_the_port() {
    QFETCH(const QByteArray, form);
    const Pty pty;
    const auto locked_by = [&](QProcess& program, const QString& input) {
        program.setStandardInputFile(input);
        // This test has the port open, too.
        program.setChildProcessModifier([] { ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC); });
        program.start("sleep", {"60"});
        if (!program.waitForStarted()) return false;
        const QString number = QString::number(program.processId()).rightJustified(10);
        return put_file(lock_file_of(pty.path()), QString(form).arg(number).toLatin1());
    };
    QProcess user;
    QVERIFY(locked_by(user, pty.path()));
    QCOMPARE(fault_on_open(pty.path()), PortFault::busy);
    QVERIFY(QFile::exists(lock_file_of(pty.path())));
    user.kill();
    QVERIFY(user.waitForFinished());
    // The number has been given to a program that has nothing to do with the port.
    QProcess stranger;
    QVERIFY(locked_by(stranger, "/dev/null"));
    if (!form.contains("sleep")) QCOMPARE(fault_on_open(pty.path()), PortFault::none);
    stranger.kill();
    QVERIFY(stranger.waitForFinished());
    QFile::remove(lock_file_of(pty.path()));
}

void RealPortTest::a_folder_for_lock_files_is_left_as_it_was() {
    const QTemporaryDir folder;
    const QString lock = folder.filePath("LCK..ttyS0");
    QCOMPARE(look_at_lock_file(lock), PortFault::other);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    QCOMPARE(look_at_lock_file(folder.filePath("gone/LCK..ttyS0")), PortFault::lock_folder_shut);
    QCOMPARE(look_at_lock_file(QString()), PortFault::lock_folder_shut);
    QVERIFY(put_file(lock, "0\n"));
    QCOMPARE(look_at_lock_file(lock), PortFault::lock_names_nobody);
    // The first process is always there.
    QVERIFY(put_file(lock, "1\n"));
    QCOMPARE(look_at_lock_file(lock), PortFault::busy);
    QVERIFY(put_file(lock, "1\nno such name\n"));
    QCOMPARE(look_at_lock_file(lock), PortFault::lock_left_behind);
    QVERIFY(!platform::running_process(0));
    QVERIFY(!platform::running_process(-1));
}

void RealPortTest::no_room_for_a_lock_file() {
    if (geteuid() != 0) QSKIP("no rights to mount a small disk");
    const Pty pty;
    // 77: this machine lets nobody mount; 78: the text is not that of a full disk.
    const int seen = as_root_alone([&] {
        if (mount("tmpfs", "/run/lock", "tmpfs", 0, "size=4k,nr_inodes=1") != 0) return 77;
        const PortFault fault = fault_on_open(pty.path());
        const QString text = port_fault_text(fault, pty.path(), Texts());
        return text.startsWith("There is no room left in /") ? static_cast<int>(fault) : 78;
    });
    if (seen == 77) QSKIP("no rights to mount a small disk");
    QCOMPARE(static_cast<PortFault>(seen), PortFault::lock_folder_full);
}

void RealPortTest::a_whole_transaction() {
    const Pty pty;
    const PtyMeter meter(pty, level);
    Setup s(pty.path());
    for (int i = 0; i < 3; ++i) {
        QVERIFY(s.link.send("LEVANL?"));
        QCOMPARE(s.link.last_answer(), QString("73.5"));
        QVERIFY(!s.port.is_open());
    }
}

void RealPortTest::an_event_loop_runs_meanwhile() {
    const Pty pty;
    const PtyMeter meter(pty, [](const QByteArray& command) {
        std::this_thread::sleep_for(200ms);
        return level(command);
    });
    Setup s(pty.path());
    s.view.on_pump = [] { QCoreApplication::processEvents(); };
    QVERIFY(s.link.send("LEVANL?"));
    QCOMPARE(s.link.last_answer(), QString("73.5"));
    QVERIFY(s.view.pumps >= 5);
}

void RealPortTest::the_line_settings() {
    const Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    termios settings{};
    QCOMPARE(tcgetattr(pty.slave(), &settings), 0);
    QCOMPARE(cfgetispeed(&settings), speed_t{B38400});
    QCOMPARE(cfgetospeed(&settings), speed_t{B38400});
    QCOMPARE(settings.c_cflag & CSIZE, tcflag_t{CS8});
    QCOMPARE(settings.c_cflag & CSTOPB, tcflag_t{CSTOPB});
    QCOMPARE(settings.c_cflag & (PARENB | CRTSCTS), tcflag_t{0});
    QCOMPARE(settings.c_iflag & (ICRNL | INLCR | IGNCR | IXON | IXOFF), tcflag_t{0});
    QCOMPARE(settings.c_oflag & OPOST, tcflag_t{0});
    QCOMPARE(settings.c_lflag & (ECHO | ICANON | ISIG), tcflag_t{0});
}

void RealPortTest::characters_go_out_at_once() {
    const Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    for (int value = 0; value < 256; ++value) {
        const char character = static_cast<char>(value);
        QVERIFY(port.write(character));
        QCOMPARE(pty.take(1), QByteArray(1, character));
    }
}

void RealPortTest::old_bytes_are_cleared() {
    const Pty pty;
    pty.feed("LEVANL?\r1.0\rOK\r");
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    QVERIFY(!port.wait_for_input(50ms));
    QCOMPARE(port.read_all(), QByteArray());
    pty.feed("old");
    QVERIFY(port.wait_for_input(1s));
    port.clear();
    QCOMPARE(port.read_all(), QByteArray());
    pty.feed("new");
    QCOMPARE(read_some(port, 3), QByteArray("new"));
}

void RealPortTest::a_wait_ends_with_its_limit_or_with_input() {
    const Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    QElapsedTimer timer;
    for (int i = 0; i < 10; ++i) {
        timer.start();
        QVERIFY(!port.wait_for_input(5ms));
        QVERIFY(timer.elapsed() >= 4);
        QVERIFY(port.is_open());
    }
    pty.feed("x");
    timer.start();
    QVERIFY(port.wait_for_input(5s));
    // Input that was not read yet is input still.
    QVERIFY(port.wait_for_input(5s));
    QVERIFY(timer.elapsed() < 1000);
    QCOMPARE(port.read_all(), QByteArray("x"));
}

void RealPortTest::more_than_the_buffer_holds() {
    const Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    QByteArray sent;
    while (sent.size() < 300'000) sent += QByteArray::number(sent.size()) + '\r';
    std::thread writer([&] { pty.feed(sent); });
    // A window that is slow to repaint leaves the line alone for a while.
    std::this_thread::sleep_for(50ms);
    QCoreApplication::processEvents();
    const QByteArray received = read_some(port, sent.size());
    writer.join();
    QCOMPARE(received.size(), sent.size());
    QVERIFY(received == sent);
}

void RealPortTest::unplugged_while_waiting() {
    Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    std::atomic<bool> gone = false;
    std::thread hand([&] {
        std::this_thread::sleep_for(100ms);
        gone = true;
        pty.unplug();
    });
    QElapsedTimer since;
    int waits_after = 0;
    while (port.is_open() && waits_after < 1000) {
        if (gone && ++waits_after == 1) since.start();
        port.wait_for_input(5ms);
    }
    hand.join();
    QVERIFY(!port.is_open());
    QCOMPARE(port.fault(), PortFault::vanished);
    QVERIFY(!since.isValid() || since.elapsed() < 100);
    QVERIFY(waits_after < 20);
}

void RealPortTest::unplugged_within_a_transaction() {
    for (const bool event_loop : {false, true}) {
        Pty pty;
        Setup s(pty.path());
        if (event_loop) s.view.on_pump = [] { QCoreApplication::processEvents(); };
        QElapsedTimer since;
        std::thread hand([&] {
            std::this_thread::sleep_for(500ms);
            since.start();
            pty.unplug();
        });
        QVERIFY(!s.link.send("LEVANL?"));
        hand.join();
        QVERIFY(since.elapsed() < 100);
        QVERIFY(!s.link.port_connected);
        QCOMPARE(s.port.fault(), PortFault::vanished);
        QCOMPARE(s.view.state_text, QString("RS232 ComPort 1 NOT Connected"));
        QVERIFY(s.view.pumps < 60);
    }
}

void RealPortTest::unplugged_while_writing() {
    Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    pty.unplug();
    QVERIFY(!port.write('x'));
    QVERIFY(!port.is_open());
    QCOMPARE(port.fault(), PortFault::vanished);
}

void RealPortTest::the_other_side_does_not_read() {
    const Pty pty;
    RealPort port;
    port.select(pty.path());
    QVERIFY(port.open());
    QElapsedTimer timer;
    timer.start();
    int written = 0;
    while (written < 1'000'000 && port.write('x')) ++written;
    QVERIFY(written > 0 && written < 1'000'000);
    QVERIFY(port.is_open());
    QVERIFY(!port.write('x'));
    QVERIFY(port.is_open());
    QCOMPARE(port.fault(), PortFault::none);
    // Waiting for its answer does not spin.
    QElapsedTimer wait;
    wait.start();
    QVERIFY(!port.wait_for_input(30ms));
    QVERIFY(wait.elapsed() >= 29);
    port.close();
    QVERIFY(!port.is_open());
    QVERIFY(timer.elapsed() < 5000);
    // Opening anew drops what the other side never read.
    QVERIFY(port.open());
    QVERIFY(port.write('y'));
}

}  // namespace m47::link

QTEST_GUILESS_MAIN(m47::link::RealPortTest)
