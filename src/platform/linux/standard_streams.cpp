// SPDX-License-Identifier: GPL-3.0-or-later
#include "standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace m47::platform {

static_assert(kStandardOutput == STDOUT_FILENO && kStandardErrors == STDERR_FILENO);

void occupy_closed_streams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

bool is_terminal(int descriptor) {
    return ::isatty(descriptor) != 0;
}

}  // namespace m47::platform
