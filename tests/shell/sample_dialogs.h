// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QMap>
#include <QString>
#include <functional>

#include "link.h"
#include "program_state.h"

namespace m47::shell {

using MakeDialog = std::function<QDialog*(QWidget* parent)>;

/// Every dialog of the program by its name, filled as in use; `state` and `line` outlive what is
/// made.
QMap<QString, MakeDialog> sample_dialogs(ProgramState& state, link::Link& line);

}  // namespace m47::shell
