// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47 {

enum class LampColour { grey, red, green };

}  // namespace m47
