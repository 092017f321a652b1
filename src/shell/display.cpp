// SPDX-License-Identifier: GPL-3.0-or-later
#include "display.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QList>
#include <algorithm>
#include <cstddef>

namespace m47 {
namespace {

constexpr int kFirstXPort = 6000;

bool answers(int family, const sockaddr* address, socklen_t length) {
    const int handle = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (handle < 0) return false;
    const bool connected = ::connect(handle, address, length) == 0;
    ::close(handle);
    return connected;
}

/// `path` of a local socket; one that begins with a zero byte has no file.
bool local_socket_answers(const QByteArray& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return false;
    std::copy(path.begin(), path.end(), address.sun_path);
    const auto length = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(path.size());
    return answers(AF_UNIX, reinterpret_cast<const sockaddr*>(&address),
                   static_cast<socklen_t>(length));
}

bool loopback_answers(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return answers(AF_INET, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

bool wayland_reachable() {
    QByteArray path = qgetenv("WAYLAND_DISPLAY");
    if (path.isEmpty()) return false;
    if (!path.startsWith('/')) path.prepend(qgetenv("XDG_RUNTIME_DIR") + '/');
    return local_socket_answers(path);
}

}  // namespace

bool x_display_reachable(const QByteArray& name) {
    const qsizetype colon = name.lastIndexOf(':');
    if (colon < 0) return false;
    const QByteArray host = name.left(colon);
    bool good = false;
    const int number = name.mid(colon + 1).split('.').constFirst().toInt(&good);
    if (!good || number < 0) return false;
    if (host.isEmpty() || host == "unix") {
        const QByteArray path = "/tmp/.X11-unix/X" + QByteArray::number(number);
        return local_socket_answers(path) || local_socket_answers(QByteArray(1, '\0') + path);
    }
    if (host == "localhost" || host.startsWith("127."))
        return loopback_answers(kFirstXPort + number);
    return true;
}

bool display_reachable() {
    return wayland_reachable() || x_display_reachable(qgetenv("DISPLAY"));
}

}  // namespace m47
