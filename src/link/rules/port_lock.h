// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "running_process.h"
#include "serial_port.h"

namespace m47::link {

/// Where the system keeps the lock files of serial lines, in the order in which they are tried.
QStringList lock_folders();

/// The lock file that keeps other programs off `device` while it is open: LCK..ttyUSB0, in the
/// first of `folders` that can be used. Empty where none can.
QString lock_file_of(const QString& device, const QStringList& folders = lock_folders());

/// The program that a lock file names, where it still runs.
std::optional<platform::RunningProcess> lock_file_holder(const QString& lock_file);

/// True where what stands at `lock_file` can be no lock file: a pipe, a device, a folder, a file
/// that is too long. The serial library would wait for it or read it to its end.
bool is_no_lock_file(const QString& lock_file);

/// True where `lock_file` names a running program that has the device `node` open. The serial
/// library takes the number alone, without a name, for a number given anew, and removes the file.
bool is_held_by_another(const QString& lock_file, const QString& node);

/// Why the lock file `lock_file` cannot be made: busy only where it names a program that runs.
PortFault look_at_lock_file(const QString& lock_file);

}  // namespace m47::link
