// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

#include "tooltips.h"

namespace m47::plans {

/// The tooltips of the plan screen's controls, toolbar keys and menu entries, in both languages.
std::span<const Tooltip> plan_tooltips();

/// The words under the toolbar's keys.
std::span<const Caption> plan_key_words();

}  // namespace m47::plans
