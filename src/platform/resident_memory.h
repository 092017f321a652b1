// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::platform {

/// Gives back the memory that holds program code and constants, the libraries' included: what is
/// needed again comes back from the files by itself, what only a start needed stays away. For a
/// program that runs for days; costs the next use of each page some microseconds.
void give_back_code();

}  // namespace m47::platform
