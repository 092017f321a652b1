// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>

#include "options.h"

namespace m47::unattended {

/// Gives `parser` every option with its help; what is not in `offer` it knows without showing it.
void add_options(QCommandLineParser& parser, const Offer& offer);

/// The first option on the command line that `offer` does not have, empty for none.
QString withheld_option(const QCommandLineParser& parser, const Offer& offer);

}  // namespace m47::unattended
