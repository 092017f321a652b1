// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include "options.h"

namespace m47::unattended {

/// Reads what stands behind the options into `options`. One sentence that names the option, what
/// was given and what it takes, or which values contradict each other; empty where all are good.
QString read_values(const QCommandLineParser& parser, const Offer& offer, Options& options);

}  // namespace m47::unattended
