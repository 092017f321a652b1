// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "texts.h"

namespace m47 {

/// A pipe whose reader has gone and a file that has reached its limit no longer end the program:
/// the write fails instead, which is told where it matters. Programs that this one starts are not
/// affected.
void let_writes_fail();

/// From now on SIGINT, SIGTERM and, unless it is ignored as under nohup, SIGHUP tell the program to
/// end and do nothing else. Told a third time, it ends at once all the same.
void listen_to_end_signals();

/// How often the program has been told to end.
int times_told_to_end();

/// The signal that told it first; 0 when none did.
int first_end_signal();

/// A descriptor that can be read as soon as the program has been told to end; never read it.
int end_signal_descriptor();

/// The exit status of a program that was told to end: 128 + the first signal, as shells have it.
int end_signal_status();

/// Tells on stderr in one line which signal it was and `how_far` the work had come.
void tell_end(const Said& how_far, const Texts& texts);

}  // namespace m47
