// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include "options.h"

namespace m47::unattended {

/// Reads where the rows of a run are published. One sentence where it is wrong.
QString read_publish(const QCommandLineParser& parser, Options& options);

/// What lacks for publishing, in one sentence; empty where nothing does.
QString check_publish(const QCommandLineParser& parser);

}  // namespace m47::unattended
