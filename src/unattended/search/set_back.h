// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "meter_connection.h"
#include "meter_levels.h"
#include "options.h"
#include "texts.h"

namespace m47::unattended {

/// How the LNB is fed by the options; what was not given is left as it is.
band::Feed feed_of(const AntennaOptions& antenna);

/// Sets the meter back as `levels` found it. One sentence about what is not as it was; empty where
/// all is.
QString set_meter_back(band::MeterLevels& levels, const Texts& texts);

/// What holds for each run that sets the meter back at its end: it speaks English, a signal ends
/// it, and a second one breaks it off.
void begin_run(Texts& texts, MeterConnection& connection);

/// Connects to the meter on port `number`. Where none answers it says so.
bool meter_answers(MeterConnection& connection, int number);

}  // namespace m47::unattended
