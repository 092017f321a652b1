// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

namespace m47::shell {

/// True when a window system answers where DISPLAY or WAYLAND_DISPLAY point: the window toolkit
/// ends the program hard when it is told of one that is gone (an old session, another user's). A
/// display on another machine is believed.
bool display_reachable();

/// True when something listens on X display `name`, as ":0", "localhost:10.0" or "far.example:0".
bool x_display_reachable(const QByteArray& name);

}  // namespace m47::shell
