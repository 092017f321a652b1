// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "serial_port.h"
#include "texts.h"

namespace m47::link {

/// The absolute path of `device`: a bare name ("ttyUSB0") lies in /dev unless the current directory
/// has a file of that name, every other relative path starts from the current directory. Empty for
/// an empty name.
QString device_path(const QString& device);

/// Why `device` could not be used just now; `none` where nothing speaks against it. A line that
/// this process has open itself is reported as busy.
PortFault look_at(const QString& device);

/// The name of a fault in files that programs read: "no-permission"; never null.
const char* port_fault_name(PortFault fault);

/// That the meter refused `command` at every attempt; as the end of a sentence.
QString refused_text(const QString& command, const Texts& texts);

/// Why the link counts as lost where the meter refused `command` at every attempt, and what helps;
/// as the end of a sentence.
QString refusal_text(const QString& command, const Texts& texts);

/// One sentence or two for the user: what is wrong with `device` and what helps. Empty for `none`.
QString port_fault_text(PortFault fault, const QString& device, const Texts& texts);

}  // namespace m47::link
