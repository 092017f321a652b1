// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>

namespace m47::platform {

/// Lets `process`, which is started after this by the thread that lives as long as the program, end
/// with this program however that ends.
void end_with_this_program(QProcess& process);

}  // namespace m47::platform
