// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_lock.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include "file_place.h"
#include "medium.h"

namespace m47::link {
namespace {

constexpr qint64 kLongestLockFile = 1024;

/// What a lock file says: its first line names a process, its second a program; neither has to.
/// Many programs write all of it into the first line: number, program, user.
struct LockEntry {
    qint64 process = 0;
    QString program;
};

LockEntry read_lock_file(const QString& path) {
    QFile file(path);
    // A pipe in its place would never answer.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) return {};
    const QList<QByteArray> lines = file.read(kLongestLockFile).split('\n');
    const QList<QByteArray> words = lines.value(0).simplified().split(' ');
    const QByteArray program = words.size() > 1 ? words[1] : lines.value(1).trimmed();
    return {words[0].toInt(), QString::fromUtf8(program)};
}

/// The number of a process that has ended may belong to another program by now.
bool is_same_program(const QString& noted, const QString& running) {
    return noted.isEmpty() || running.isEmpty() || noted.startsWith(running);
}

/// What keeps a file from being made in `folder`; none where one can be.
PortFault look_at_folder(const QString& folder) {
    const std::error_code fault = platform::fault_of_writing_in(folder, "1\n");
    if (!fault) return PortFault::none;
    return platform::is_full(fault) ? PortFault::lock_folder_full : PortFault::lock_folder_shut;
}

}  // namespace

QStringList lock_folders() {
    return {QStringLiteral("/var/lock"),
            QStringLiteral("/etc/locks"),
            QStringLiteral("/var/spool/locks"),
            QStringLiteral("/var/spool/uucp"),
            QStringLiteral("/tmp"),
            QStringLiteral("/var/tmp"),
            QStringLiteral("/var/lock/lockdev"),
            QStringLiteral("/run/lock")};
}

QString lock_file_of(const QString& device, const QStringList& folders) {
    const QString node = QFileInfo(device).canonicalFilePath();
    QString name = node.isEmpty() ? device : node;
    if (name.startsWith(QLatin1String("/dev/"))) name.remove(0, 5);
    name = QStringLiteral("/LCK..") + name.replace(u'/', u'_');
    for (const QString& folder : folders) {
        const QFileInfo about(folder);
        if (about.isReadable() && (QFile::exists(folder + name) || about.isWritable()))
            return folder + name;
    }
    return {};
}

std::optional<platform::RunningProcess> lock_file_holder(const QString& lock_file) {
    const LockEntry entry = read_lock_file(lock_file);
    const std::optional<platform::RunningProcess> holder = platform::running_process(entry.process);
    return holder && is_same_program(entry.program, holder->program) ? holder : std::nullopt;
}

bool is_no_lock_file(const QString& lock_file) {
    const QFileInfo about(lock_file);
    return about.exists() && (!about.isFile() || about.size() > kLongestLockFile);
}

bool is_held_by_another(const QString& lock_file, const QString& node) {
    const std::optional<platform::RunningProcess> holder = lock_file_holder(lock_file);
    return holder && holder->process != QCoreApplication::applicationPid() &&
           platform::may_have_open(holder->process, node);
}

PortFault look_at_lock_file(const QString& lock_file) {
    if (lock_file.isEmpty()) return PortFault::lock_folder_shut;
    const QFileInfo about(lock_file);
    if (about.isSymLink() && !about.exists()) return PortFault::lock_leads_nowhere;
    if (!about.exists()) {
        const PortFault fault = look_at_folder(about.absolutePath());
        return fault == PortFault::none ? PortFault::other : fault;
    }
    if (lock_file_holder(lock_file)) return PortFault::busy;
    return read_lock_file(lock_file).process > 0 ? PortFault::lock_left_behind
                                                 : PortFault::lock_names_nobody;
}

}  // namespace m47::link
