// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include "options.h"
#include "program_state.h"

namespace m47::unattended {

/// The folder of the user's own data: "m47-remote" in XDG_DATA_HOME or, where that is not an
/// absolute path, in "~/.local/share".
QString user_data_folder();

/// The folder that `options` ask to work in, empty to stay in the current one.
QString asked_folder(const Options& options);

/// Goes to asked_folder(); the user's own is made first where it is missing, readable by nobody
/// else. False, and still in the folder of before, when it cannot be entered.
bool enter_folder(const Options& options);

/// The process works in `folder`, and so does `state`. False where it cannot be entered.
bool work_in(const QString& folder, ProgramState& state);

}  // namespace m47::unattended
