// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string_view>

#include "texts.h"

namespace m47::sites {

/// Why `line` of a log is no measurement that can be read without a doubt; nothing where it is one.
std::optional<Said> why_unread(std::string_view line);

}  // namespace m47::sites
