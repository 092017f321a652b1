// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include "options.h"

namespace m47::unattended {

/// Reads the options about oscillator, supply, tone and DiSEqC. One sentence where one is wrong.
QString read_antenna_options(const QCommandLineParser& parser, AntennaOptions& antenna);

}  // namespace m47::unattended
