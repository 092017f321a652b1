// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "tooltips.h"

namespace m47::logger {

/// The tooltips of the logger screen's controls and toolbar keys, in both languages.
std::span<const Tooltip> download_tooltips();

/// The words under the toolbar's keys.
std::span<const Caption> download_key_words();

}  // namespace m47::logger
