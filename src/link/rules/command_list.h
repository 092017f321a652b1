// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

#include "commands.h"

namespace m47::link::command {

/// The words of one subject.
struct Group {
    const char* title;
    std::vector<const Word*> words;
};

/// Every word that the program sends, in an order in which a new meter can carry out their uses
/// one after the other.
std::vector<Group> command_list();

}  // namespace m47::link::command
