// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>
#include <system_error>

namespace m47::platform {

/// A program that runs now.
struct RunningProcess {
    QString program;  ///< empty where the system does not tell
    qint64 process = 0;
};

/// The running process of that number; nothing where there is none.
std::optional<RunningProcess> running_process(qint64 process);

/// True where the process of that number has the device `node` open, and where the system does not
/// let us see what it has open.
bool may_have_open(qint64 process, const QString& node);

/// Another program that has the serial line `device` open, as far as the system lets us see;
/// nothing for a pseudo-terminal, which the program at its other end always has open.
std::optional<RunningProcess> other_user_of_line(const QString& device);

}  // namespace m47::platform
