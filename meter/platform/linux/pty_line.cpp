// SPDX-License-Identifier: GPL-3.0-or-later
#include "pty_line.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace meter {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void make_raw(int descriptor) {
    termios line{};
    if (tcgetattr(descriptor, &line) != 0) fail("cannot read the line settings");
    cfmakeraw(&line);
    line.c_cflag |= CSTOPB | CLOCAL | CREAD;
    cfsetspeed(&line, B38400);
    if (tcsetattr(descriptor, TCSANOW, &line) != 0) fail("cannot set the line raw");
}

bool is_process_folder(const fs::path& path) {
    const std::string name = path.filename();
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// True when the process has the device open, by whatever path; a process of another user counts as
/// not having it.
bool has_open(const fs::path& process, dev_t device) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(process / "fd", error)) {
        struct stat about {};
        if (::stat(entry.path().c_str(), &about) == 0 && S_ISCHR(about.st_mode) &&
            about.st_rdev == device)
            return true;
    }
    return false;
}

}  // namespace

PtyLine::PtyLine() {
    open();
}

void PtyLine::open() {
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
        fail("cannot open a pseudo-terminal");
    char name[128];
    if (ptsname_r(master_, name, sizeof name) != 0) fail("the pseudo-terminal has no name");
    path_ = name;
    slave_ = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave_ < 0) fail("cannot open " + path_);
    make_raw(slave_);
}

PtyLine::~PtyLine() {
    close();
}

void PtyLine::close() {
    if (slave_ >= 0) ::close(slave_);
    if (master_ >= 0) ::close(master_);
    slave_ = -1;
    master_ = -1;
}

bool PtyLine::wait_for_input(std::chrono::milliseconds longest) const {
    pollfd input{master_, POLLIN, 0};
    return ::poll(&input, 1, static_cast<int>(longest.count())) > 0 &&
           (input.revents & POLLIN) != 0;
}

void PtyLine::wait_for_room(std::chrono::milliseconds longest) const {
    pollfd output{master_, POLLOUT, 0};
    ::poll(&output, 1, static_cast<int>(longest.count()));
}

std::string PtyLine::read_pending() {
    std::string bytes;
    char buffer[512];
    ssize_t count = 0;
    while (master_ >= 0 && (count = ::read(master_, buffer, sizeof buffer)) > 0)
        bytes.append(buffer, static_cast<std::size_t>(count));
    return bytes;
}

std::size_t PtyLine::write_some(std::string_view bytes) {
    if (master_ < 0) return 0;
    const ssize_t count = ::write(master_, bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool PtyLine::unread() const {
    int count = 0;
    return slave_ >= 0 && ioctl(slave_, FIONREAD, &count) == 0 && count > 0;
}

void PtyLine::discard_unread() {
    if (slave_ >= 0) tcflush(slave_, TCIFLUSH);
}

bool PtyLine::held_by_another_process() {
    struct stat about {};
    if (fstat(slave_, &about) != 0) return false;
    const dev_t device = about.st_rdev;
    if (!last_holder_.empty() && has_open(last_holder_, device)) return true;
    const std::string own = std::to_string(getpid());
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/proc", error)) {
        const fs::path& process = entry.path();
        if (is_process_folder(process) && process.filename() != own && has_open(process, device)) {
            last_holder_ = process;
            return true;
        }
    }
    return false;
}

void PtyLine::clear_stale_lock() {
    int locked = 0;
    if (slave_ >= 0 && ioctl(slave_, TIOCGEXCL, &locked) == 0 && locked != 0 &&
        !held_by_another_process())
        ioctl(slave_, TIOCNXCL);
}

}  // namespace meter
