// SPDX-License-Identifier: GPL-3.0-or-later
#include "service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

namespace m47::platform {
namespace {

/// False where `path` is none: a path, or behind "@" a name without a file.
bool address_of(const QByteArray& path, sockaddr_un& address, socklen_t& length) {
    if (path.size() < 2 || path.size() >= static_cast<qsizetype>(sizeof address.sun_path) ||
        (path[0] != '/' && path[0] != '@'))
        return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    if (path[0] == '@') address.sun_path[0] = '\0';
    length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) +
                                    static_cast<std::size_t>(path.size()));
    return true;
}

}  // namespace

bool tell_service_manager(const QByteArray& lines) {
    sockaddr_un address{};
    socklen_t length = 0;
    if (!address_of(qgetenv("NOTIFY_SOCKET"), address, length)) return false;
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) return false;
    const auto size = static_cast<std::size_t>(lines.size());
    const ssize_t sent = sendto(descriptor, lines.constData(), size, MSG_NOSIGNAL,
                                reinterpret_cast<const sockaddr*>(&address), length);
    close(descriptor);
    return sent == static_cast<ssize_t>(size);
}

std::optional<std::chrono::microseconds> watchdog_time() {
    const QByteArray process = qgetenv("WATCHDOG_PID");
    // Meant for another one, such as a wrapper.
    if (!process.isEmpty() && process.toLongLong() != getpid()) return std::nullopt;
    const qlonglong time = qgetenv("WATCHDOG_USEC").toLongLong();
    if (time <= 0) return std::nullopt;
    return std::chrono::microseconds(time);
}

}  // namespace m47::platform
