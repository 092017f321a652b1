// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include "options.h"

namespace m47::unattended {

/// Reads at which site a run is kept and what it is compared with. One sentence where it is wrong.
QString read_visit(const QCommandLineParser& parser, Options& options);

/// What lacks of a visit that is asked for, in one sentence; empty where nothing does.
QString check_visit(const QCommandLineParser& parser);

}  // namespace m47::unattended
