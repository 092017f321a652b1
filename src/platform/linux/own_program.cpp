// SPDX-License-Identifier: GPL-3.0-or-later
#include "own_program.h"

#include <unistd.h>

namespace m47::platform {

void start_own_program(QProcess& process, const QStringList& arguments, int input) {
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([input] { ::dup2(input, STDIN_FILENO); });
    process.start(QStringLiteral("/proc/self/exe"), arguments);
}

}  // namespace m47::platform
