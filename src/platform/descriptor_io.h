// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>
#include <string_view>
#include <system_error>

namespace m47::platform {

/// Reads at most `room` bytes into `into` and says how many came: 0 at the end, negative after an
/// error.
qint64 read_some(int descriptor, char* into, std::size_t room);

/// Writes `bytes` to the last; why it could not where it could not.
std::error_code write_all(int descriptor, std::string_view bytes);

}  // namespace m47::platform
