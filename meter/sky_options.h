// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "lnb.h"
#include "orbit.h"
#include "sky.h"

namespace meter {

/// What the command line says of the sky; what is not told otherwise holds for the orbit alone.
struct SkyOptions {
    bool orbit = false;
    SkyKind kind = SkyKind::good;  ///< where it is not the orbit
    double fade_db = 0.0;          ///< every carrier is weaker by this, of either sky
    std::string tables = "/usr/share/dvb/dvb-s";
    OrbitOptions chance;
    Lnb lnb;
    double point_east = 13.0;
    int backlash = 0;  ///< steps of the motor
};

constexpr int kMostBacklash = 3;

}  // namespace meter
