// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "tooltips.h"

namespace m47::asl {

/// The tooltips of the satellite screen.
std::span<const Tooltip> asl_tooltips();

}  // namespace m47::asl
