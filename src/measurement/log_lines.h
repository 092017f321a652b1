// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "page_store.h"

namespace m47::measurement {

/// Adds the lines of `text`, a piece of a log, to `store` and returns how many bytes they took. A
/// line ends at CR, LF or CR LF; a last line without a line end, or with a CR that may be half of
/// one, is taken only when `last` says that nothing follows. Nothing is returned when a line does
/// not fit the page.
std::optional<std::size_t> take_log_lines(std::string_view text, bool last, PageStore& store);

/// Tells `line` each line of `text`, a whole log, without its end, and returns true; false where
/// `line` did not want more.
bool each_log_line(std::string_view text, const std::function<bool(std::string_view)>& line);

}  // namespace m47::measurement
