// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "real_port.h"

#include <linux/close_range.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <memory>

#include "fake_link_view.h"
#include "fake_port.h"
#include "known_device.h"
#include "link.h"
#include "port_diagnosis.h"
#include "port_lock.h"
#include "pty.h"
#include "real_clock.h"

namespace m47::link {

using namespace std::chrono_literals;

struct Setup {
    RealPort port;
    RealClock clock;
    FakeLinkView view;
    Link link{port, clock, view};

    explicit Setup(const QString& device) {
        port.select(device);
        link.port_connected = true;
        link.port_number = 1;
    }
};

inline QByteArray level(const QByteArray& command) {
    return FakePort::good(command, "73.5");
}

/// The fault on opening `device`, none where it opens.
inline PortFault fault_on_open(const QString& device) {
    RealPort port;
    port.select(device);
    return port.open() ? PortFault::none : port.fault();
}

inline bool put_file(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// The exit status of `work` in a process whose mounts nobody else sees; 77 where there is none.
inline int as_root_alone(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) {
        const bool alone = unshare(CLONE_NEWNS) == 0 &&
                           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        _exit(alone ? work() : 77);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// A pseudo-terminal with the number of one that is gone; nullptr where another process was faster.
inline std::unique_ptr<Pty> pty_at(const QString& path) {
    auto pty = std::make_unique<Pty>();
    return pty->path() == path ? std::move(pty) : nullptr;
}

/// What arrives at `port` until `length` bytes are there or nothing comes for a second.
inline QByteArray read_some(RealPort& port, qsizetype length) {
    QByteArray bytes = port.read_all();
    while (bytes.size() < length && port.wait_for_input(1s)) bytes += port.read_all();
    return bytes;
}

/// The serial line on a pseudo-terminal.
class RealPortTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_lock_file_that_nobody_holds_data();
    void a_lock_file_that_nobody_holds();
    void what_is_no_file_in_the_place_of_the_lock_file();
    void a_lock_file_of_a_program_that_has_the_port_data();
    void a_lock_file_of_a_program_that_has_the_port();
    void a_folder_for_lock_files_is_left_as_it_was();
    void no_room_for_a_lock_file();
    void a_whole_transaction();
    void an_event_loop_runs_meanwhile();
    void the_line_settings();
    void characters_go_out_at_once();
    void old_bytes_are_cleared();
    void a_wait_ends_with_its_limit_or_with_input();
    void more_than_the_buffer_holds();
    void unplugged_while_waiting();
    void unplugged_within_a_transaction();
    void unplugged_while_writing();
    void the_other_side_does_not_read();
    void a_closed_port();
    void missing();
    void not_a_port();
    void busy_for_the_same_user();
    void busy_for_an_ordinary_user();
    void busy_under_a_lock();
    void busy_by_a_lock_file();
    void no_permission();
    void links_and_relative_paths();
    void opened_a_hundred_times();
    void another_device_behind_the_link();
    void a_number_given_to_another_device();
    void a_touched_device_is_the_same();
    void an_adapter_behind_a_node_that_stays();
};

}  // namespace m47::link
