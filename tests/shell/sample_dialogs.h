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

/// Every dialog of the program by its name, filled as in use; `state` outlives what is
/// made, and so does `line`, which is asked for when one is made.
QMap<QString, MakeDialog> sample_dialogs(ProgramState& state,
                                         const std::function<link::Link&()>& line);

}  // namespace m47::shell
