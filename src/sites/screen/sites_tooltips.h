// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "tooltips.h"

namespace m47::sites {

/// The tooltips of the screen's controls, and what its keys, boxes and labels are called.
std::span<const Tooltip> sites_tooltips();
std::span<const Caption> sites_captions();

}  // namespace m47::sites
