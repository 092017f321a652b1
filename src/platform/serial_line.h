// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <chrono>
#include <optional>
#include <system_error>

namespace m47::platform {

/// What speaks against using the serial line `path` just now, as one of std::errc: nothing there,
/// no permission, busy, no serial line (inappropriate_io_control_operation). A line that this
/// process has open itself is busy.
std::error_code fault_of_line(const QString& path);

/// Keeps off a second program, also where that runs as root and the exclusive flag of a terminal
/// does not. False where another one was quicker.
bool keep_line(int descriptor);

/// False once the device behind the open line is gone.
bool line_is_there(int descriptor);

/// Waits, `longest` at most, until every character has gone out.
void wait_for_line_to_drain(int descriptor, std::chrono::milliseconds longest);

/// The group whose members may use the device `path`; nothing where belonging to it would not help.
std::optional<QString> group_of_device(const QString& path);

/// The name of the user who runs this program.
QString name_of_user();

}  // namespace m47::platform
