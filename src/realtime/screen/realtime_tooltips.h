// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "tooltips.h"

namespace m47::realtime {

/// The tooltips of the real-time screen's controls and toolbar keys, in both languages.
std::span<const Tooltip> realtime_tooltips();

/// What the key "save" says once the screen is open: the log is closed, or open.
inline constexpr Bilingual kOpenFileTooltip{"Open file", "Open file"};
inline constexpr Bilingual kCloseFileTooltip{"Close file", "Close file"};

/// The words under the toolbar's keys.
std::span<const Caption> realtime_key_words();

}  // namespace m47::realtime
