// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47 {

/// The key code that confirms an entry in a box.
inline constexpr int kEnterKey = 13;

}  // namespace m47
