// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47::platform {

/// A pipe whose reader has gone and a file that has reached its limit no longer end the program:
/// the write fails instead, which is told where it matters. Programs that this one starts are not
/// affected.
void let_writes_fail();

/// From now on SIGINT, SIGTERM and, unless it is ignored as under nohup, SIGHUP tell the program to
/// end and do nothing else. Told a third time, it ends at once all the same.
void listen_to_end_signals();

/// From now on SIGHUP asks the program to read its configuration again; or, as before, to end. One
/// that is ignored stays so.
void let_hangups_ask(bool ask);

/// How often the program has been asked to read its configuration again.
int times_asked_to_read_again();

/// How often the program has been told to end.
int times_told_to_end();

/// The name of the signal that told it first.
QString first_end_signal_name();

/// A descriptor that can be read as soon as the program has been told to end; never read it.
int end_signal_descriptor();

/// The exit status of a program that was told to end: 128 + the first signal, as shells have it.
int end_signal_status();

}  // namespace m47::platform
