// SPDX-License-Identifier: GPL-3.0-or-later
#include "descriptor_io.h"

#include <unistd.h>

#include <cerrno>

#include "system_error.h"

namespace m47::platform {

qint64 read_some(int descriptor, char* into, std::size_t room) {
    for (;;) {
        const ssize_t got = ::read(descriptor, into, room);
        if (got >= 0 || errno != EINTR) return got;
    }
}

std::error_code write_all(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (written == 0)
            return std::make_error_code(std::errc::io_error);
        else if (errno != EINTR)
            return last_error();
    }
    return {};
}

}  // namespace m47::platform
