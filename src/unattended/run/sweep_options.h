// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include "options.h"

namespace m47::unattended {

/// Reads what is to be swept, with the oscillator that `options` has by then. One sentence where it
/// is wrong.
QString read_sweep_span(const QCommandLineParser& parser, Options& options);

}  // namespace m47::unattended
