// SPDX-License-Identifier: GPL-3.0-or-later
#include "child_process.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace m47::platform {

void end_with_this_program(QProcess& process) {
    process.setChildProcessModifier([parent = ::getpid()] {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        // It may have ended already.
        if (::getppid() != parent) ::_exit(1);
    });
}

}  // namespace m47::platform
