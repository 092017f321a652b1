// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace meter {

/// From now on a signal to end is only noted, as is the one that asks for the state (SIGUSR1), and
/// a reader that has gone ends nothing.
void listen_to_signals();

/// A signal to end has come.
bool told_to_stop();

/// The state has been asked for since this was called last.
bool state_asked_for();

}  // namespace meter
