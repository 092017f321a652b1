// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include "options.h"

namespace m47::unattended {

/// Reads how far the dish may turn. One sentence where it is wrong.
QString read_peak_span(const QCommandLineParser& parser, Options& options);

/// One sentence where what the search for the peak needs is not given.
QString check_peak(const QCommandLineParser& parser, const Options& options);

}  // namespace m47::unattended
