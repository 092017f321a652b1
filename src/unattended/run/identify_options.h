// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>
#include <QString>

#include "options.h"

namespace m47::unattended {

/// Takes over what is to be chosen from; the oscillator has been read by then. One sentence where
/// it is wrong.
QString read_identify(const QCommandLineParser& parser, Options& options);

/// One sentence where it lacks an option or stands beside one that it does not go with.
QString check_identify(const QCommandLineParser& parser, const Options& options);

/// The options that mean nothing without it: one sentence where one is given all the same.
QString check_without_identify(const QCommandLineParser& parser);

}  // namespace m47::unattended
