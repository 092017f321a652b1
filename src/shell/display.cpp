// SPDX-License-Identifier: GPL-3.0-or-later
#include "display.h"

#include <QList>

#include "listener.h"

namespace m47::shell {
namespace {

constexpr int kFirstXPort = 6000;

bool wayland_reachable() {
    QByteArray path = qgetenv("WAYLAND_DISPLAY");
    if (path.isEmpty()) return false;
    if (!path.startsWith('/')) path.prepend(qgetenv("XDG_RUNTIME_DIR") + '/');
    return platform::local_socket_answers(path);
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
        return platform::local_socket_answers(path) ||
               platform::local_socket_answers(QByteArray(1, '\0') + path);
    }
    if (host == "localhost" || host.startsWith("127."))
        return platform::loopback_answers(kFirstXPort + number);
    return true;
}

bool display_reachable() {
    return wayland_reachable() || x_display_reachable(qgetenv("DISPLAY"));
}

}  // namespace m47::shell
