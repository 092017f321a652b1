// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::shell {

/// `text` as one line of stderr, for whoever reads what a command says.
void say_on_stderr(const QString& text);

}  // namespace m47::shell
