// SPDX-License-Identifier: GPL-3.0-or-later
#include "listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace m47::platform {
namespace {

bool answers(int family, const sockaddr* address, socklen_t length) {
    const int handle = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (handle < 0) return false;
    const bool connected = ::connect(handle, address, length) == 0;
    ::close(handle);
    return connected;
}

}  // namespace

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

}  // namespace m47::platform
