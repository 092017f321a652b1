// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "meter_levels.h"
#include "options.h"
#include "texts.h"

namespace m47::unattended {

/// How the LNB is fed by the options; what was not given is left as it is.
band::Feed feed_of(const AntennaOptions& antenna);

/// Sets the meter back as `levels` found it. One sentence about what is not as it was and about a
/// lost link, which is left out where that is `told` already; empty where all is well.
QString set_meter_back(band::MeterLevels& levels, const Texts& texts, bool told = false);

}  // namespace m47::unattended
