// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include "program_state.h"

namespace m47::shell {

/// What this program is and stands on, a line each: what somebody who helps asks for first.
QString about_text(const ProgramState& program);

/// Shows it in a box of `parent`, with a key that puts it into the clipboard.
void show_about(QWidget* parent, const ProgramState& program);

}  // namespace m47::shell
