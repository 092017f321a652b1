// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "texts.h"

namespace m47::shell {

/// Tells on stderr in one line which signal told the program to end and `how_far` the work had
/// come.
void tell_end(const Said& how_far, const Texts& texts);

}  // namespace m47::shell
