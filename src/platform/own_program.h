// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>
#include <QStringList>

namespace m47::platform {

/// Starts this program once more as `process`, with the open file `input` as its stdin. Not by its
/// name: an update may have put another version there since this one started. `input` has to stay
/// open until the process has started.
void start_own_program(QProcess& process, const QStringList& arguments, int input);

}  // namespace m47::platform
