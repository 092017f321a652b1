// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>

namespace m47::platform {

// What a process does to itself that works on foreign bytes for another one.

/// Closes what the program that started this one has open, but for the standard streams.
void close_all_but_streams();

/// The plain file on stdin, as memory that only shows it, and closes stdin; empty where that cannot
/// be.
QByteArrayView take_input_file();

/// Whatever becomes of this process, it ends after `seconds` of work, takes `memory` bytes at most
/// (0: as many as there are) and leaves neither a file nor a core.
void limit_this_process(qint64 seconds, qint64 memory);

/// Writes `bytes` to stdout, straight to the system: a stream of the library would ask it for more
/// than a confined process may. False where they did not all get there.
bool hand_over(QByteArrayView bytes);

/// Ends this process at once, with nothing tidied up and nothing told to whatever runs at an end.
[[noreturn]] void end_at_once(bool good);

}  // namespace m47::platform
