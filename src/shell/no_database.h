// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "database.h"
#include "program_state.h"

namespace m47::shell {

/// Asks what is to be done where the folder has no database: make one here, with an example plan
/// where that is wanted, or work in another folder, which `state` names afterwards. The open
/// database; nullptr where the user ends the program.
std::unique_ptr<db::Database> ask_for_database(ProgramState& state);

}  // namespace m47::shell
