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

}  // namespace m47::platform
