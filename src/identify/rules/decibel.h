// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

namespace m47::identify {

/// The ratio of two powers that are `db` apart.
inline double ratio(double db) {
    return std::pow(10.0, db / 10);
}

}  // namespace m47::identify
