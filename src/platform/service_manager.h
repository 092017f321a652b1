// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <chrono>
#include <optional>

namespace m47::platform {

/// Tells the service manager that started this process `lines` ("READY=1"), where it wants to be
/// told (NOTIFY_SOCKET). False where there is none or it cannot be reached; nothing is waited for.
bool tell_service_manager(const QByteArray& lines);

/// Within which time the service manager wants to hear of this process again, where it watches it.
std::optional<std::chrono::microseconds> watchdog_time();

}  // namespace m47::platform
