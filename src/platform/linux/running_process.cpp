// SPDX-License-Identifier: GPL-3.0-or-later
#include "running_process.h"

#include <signal.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
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

namespace {

QDir folder_of_descriptors(qint64 process) {
    QDir held(QStringLiteral("/proc/%1/fd").arg(process));
    held.setFilter(QDir::Files | QDir::System | QDir::NoDotAndDotDot);
    return held;
}

bool has_open(const QDir& held, const QStringList& descriptors, const QString& node) {
    return std::ranges::any_of(descriptors, [&](const QString& number) {
        return QFile::symLinkTarget(held.filePath(number)) == node;
    });
}

}  // namespace

bool may_have_open(qint64 process, const QString& node) {
    const QDir held = folder_of_descriptors(process);
    const QStringList descriptors = held.entryList();
    // Each process has some; those of others are shown to their user alone.
    return descriptors.isEmpty() || has_open(held, descriptors, node);
}

std::optional<RunningProcess> other_user_of_line(const QString& device) {
    const QString node = QFileInfo(device).canonicalFilePath();
    if (node.isEmpty() || node.startsWith(QLatin1String("/dev/pts/"))) return std::nullopt;
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& name : names) {
        const qint64 process = name.toLongLong();
        if (process <= 0 || process == ::getpid()) continue;
        const QDir held = folder_of_descriptors(process);
        if (has_open(held, held.entryList(), node)) return running_process(process);
    }
    return std::nullopt;
}

}  // namespace m47::platform
