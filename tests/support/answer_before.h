// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>

#include "fake_port.h"
#include "link.h"

namespace m47 {

/// Leaves `value` as the answer to a question before, of which nothing is to be seen in `port`.
inline void leave_answer(link::Link& link, FakePort& port, const QByteArray& value) {
    const bool connected = std::exchange(link.port_connected, true);
    const bool suspended = std::exchange(link.commands_suspended, false);
    const auto answer = std::exchange(
        port.answer, [value](const QByteArray& command) { return FakePort::good(command, value); });
    link.send(QStringLiteral("BEFORE?"));
    port.answer = answer;
    link.commands_suspended = suspended;
    link.port_connected = connected;
    port.written.clear();
    port.opens = port.closes = 0;
}

}  // namespace m47
