// SPDX-License-Identifier: GPL-3.0-or-later
#include "running_process.h"

#include <signal.h>

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cerrno>

namespace m47::platform {

std::optional<RunningProcess> running_process(qint64 process) {
    if (process <= 0 || (::kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH))
        return std::nullopt;
    QFile name(QStringLiteral("/proc/%1/comm").arg(process));
    const bool told = name.open(QIODevice::ReadOnly);
    return RunningProcess{told ? QString::fromUtf8(name.readAll().trimmed()) : QString(), process};
}

bool may_have_open(qint64 process, const QString& node) {
    const QDir held(QStringLiteral("/proc/%1/fd").arg(process));
    const QStringList descriptors =
        held.entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot);
    // Each process has some; those of others are shown to their user alone.
    if (descriptors.isEmpty()) return true;
    return std::ranges::any_of(descriptors, [&](const QString& number) {
        return QFile::symLinkTarget(held.filePath(number)) == node;
    });
}

}  // namespace m47::platform
