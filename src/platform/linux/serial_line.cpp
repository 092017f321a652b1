// SPDX-License-Identifier: GPL-3.0-or-later
#include "serial_line.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <thread>

#include "system_error.h"

namespace m47::platform {
namespace {

std::error_code fault_of_open_line(int descriptor) {
    return line_is_there(descriptor) && keep_line(descriptor) ? std::error_code() : last_error();
}

}  // namespace

std::error_code fault_of_line(const QString& device) {
    const QByteArray path = QFile::encodeName(device);
    struct stat node {};
    if (::stat(path.constData(), &node) != 0) return last_error();
    if (::access(path.constData(), R_OK | W_OK) != 0) return last_error();
    if (!S_ISCHR(node.st_mode))
        return std::make_error_code(std::errc::inappropriate_io_control_operation);

    const int descriptor = ::open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return last_error();
    const std::error_code fault = fault_of_open_line(descriptor);
    ::close(descriptor);
    return fault;
}

bool keep_line(int descriptor) {
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

bool line_is_there(int descriptor) {
    termios settings{};
    return ::tcgetattr(descriptor, &settings) == 0;
}

void wait_for_line_to_drain(int descriptor, std::chrono::milliseconds longest) {
    QElapsedTimer timer;
    timer.start();
    int waiting = 0;
    while (::ioctl(descriptor, TIOCOUTQ, &waiting) == 0 && waiting > 0) {
        if (timer.hasExpired(longest.count())) return;
        std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }
    ::tcdrain(descriptor);
}

std::optional<QString> group_of_device(const QString& path) {
    struct stat node {};
    if (::stat(QFile::encodeName(path).constData(), &node) != 0) return std::nullopt;
    constexpr mode_t kReadWrite = S_IRGRP | S_IWGRP;
    if ((node.st_mode & kReadWrite) != kReadWrite) return std::nullopt;
    const group* entry = ::getgrgid(node.st_gid);
    return entry ? QString::fromLocal8Bit(entry->gr_name) : QString::number(node.st_gid);
}

QString name_of_user() {
    const passwd* entry = ::getpwuid(::getuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString::number(::getuid());
}

}  // namespace m47::platform
