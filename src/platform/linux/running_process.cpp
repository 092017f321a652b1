// SPDX-License-Identifier: GPL-3.0-or-later
#include "running_process.h"

#include <signal.h>

#include <QFile>
#include <cerrno>

namespace m47::platform {

std::optional<RunningProcess> running_process(qint64 process) {
    if (process <= 0 || (::kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH))
        return std::nullopt;
    QFile name(QStringLiteral("/proc/%1/comm").arg(process));
    const bool told = name.open(QIODevice::ReadOnly);
    return RunningProcess{told ? QString::fromUtf8(name.readAll().trimmed()) : QString(), process};
}

}  // namespace m47::platform
