// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "meter_levels.h"
#include "options.h"
#include "texts.h"

namespace m47::unattended {

/// How the LNB is fed by the options; what was not given is left as it is.
band::Feed feed_of(const AntennaOptions& antenna);

/// Sets the meter back as `levels` found it. One sentence about what is not as it was; empty where
/// all is.
QString set_meter_back(band::MeterLevels& levels, const Texts& texts);

}  // namespace m47::unattended
