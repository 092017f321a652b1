// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "tooltips.h"

namespace m47::band {

/// The tooltips of the sweep's controls, and what its keys, boxes and labels are called.
std::span<const Tooltip> band_tooltips();
std::span<const Caption> band_captions();

}  // namespace m47::band
