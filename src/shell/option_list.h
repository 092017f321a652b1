// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCommandLineParser>

namespace m47::shell {

/// Gives `parser` every option of the program with its help.
void add_options(QCommandLineParser& parser);

}  // namespace m47::shell
