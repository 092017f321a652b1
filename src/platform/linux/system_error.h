// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cerrno>
#include <system_error>

namespace m47::platform {

/// Why the call to the system before failed.
inline std::error_code last_error() {
    return {errno, std::generic_category()};
}

}  // namespace m47::platform
