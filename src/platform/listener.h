// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace m47::platform {

/// True when something listens on the local socket `path`; one that begins with a zero byte has no
/// file.
bool local_socket_answers(const QByteArray& path);

/// True when something listens on TCP port `port` of this machine.
bool loopback_answers(int port);

}  // namespace m47::platform
