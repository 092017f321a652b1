// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_diagnosis.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <optional>

namespace m47 {
namespace {

constexpr Bilingual kNoPortChosen{"No device stands behind this port number.",
                                  "Nessun dispositivo corrisponde a questo numero di porta."};
constexpr Bilingual kMissing{"There is no device %1.", "Il dispositivo %1 non esiste."};
constexpr Bilingual kNoPermission{"You have no permission to use %1.",
                                  "Non hai il permesso di usare %1."};
constexpr Bilingual kJoinGroup{
    " It belongs to the group %1: run \"sudo usermod -aG %1 %2\", then log in again.",
    " Appartiene al gruppo %1: esegui \"sudo usermod -aG %1 %2\", poi accedi di nuovo."};
constexpr Bilingual kBusy{"%1 is used by another program.", "%1 è usato da un altro programma."};
constexpr Bilingual kNotAPort{"%1 is no serial port.", "%1 non è una porta seriale."};
constexpr Bilingual kVanished{"The line to %1 was lost: the device has been unplugged.",
                              "La linea verso %1 è caduta: il dispositivo è stato scollegato."};
constexpr Bilingual kOther{"%1 cannot be opened.", "Non è possibile aprire %1."};

PortFault fault_of_errno(int error) {
    switch (error) {
        case EACCES:
        case EPERM:
            return PortFault::no_permission;
        case EBUSY:
        case EWOULDBLOCK:
            return PortFault::busy;
        case ENOTTY:
            return PortFault::not_a_port;
        // A node without hardware behind it opens or not, but has no line to talk about.
        case EIO:
        case ENOENT:
        case ENOTDIR:
        case ENODEV:
        case ENXIO:
            return PortFault::missing;
        default:
            return PortFault::other;
    }
}

PortFault look_at_line(int descriptor) {
    termios settings{};
    if (tcgetattr(descriptor, &settings) != 0) return fault_of_errno(errno);
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return fault_of_errno(errno);
    return PortFault::none;
}

/// The group whose members may use `device`; nothing where belonging to it would not help.
std::optional<QString> owning_group(const QString& device) {
    struct stat node {};
    if (stat(QFile::encodeName(device).constData(), &node) != 0) return std::nullopt;
    constexpr mode_t kReadWrite = S_IRGRP | S_IWGRP;
    if ((node.st_mode & kReadWrite) != kReadWrite) return std::nullopt;
    const group* entry = getgrgid(node.st_gid);
    return entry ? QString::fromLocal8Bit(entry->gr_name) : QString::number(node.st_gid);
}

QString user_name() {
    const passwd* entry = getpwuid(getuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString::number(getuid());
}

QString no_permission_text(const QString& device, const Texts& texts) {
    QString text = texts.pick(kNoPermission).arg(device);
    if (const std::optional<QString> group = owning_group(device))
        text += texts.pick(kJoinGroup).arg(*group, user_name());
    return text;
}

}  // namespace

QString device_path(const QString& device) {
    if (device.isEmpty()) return {};
    const QFileInfo file(device);
    if (!device.contains(u'/') && !file.exists()) return QStringLiteral("/dev/") + device;
    return QDir::cleanPath(file.absoluteFilePath());
}

PortFault look_at(const QString& device) {
    if (device.isEmpty()) return PortFault::missing;
    const QByteArray path = QFile::encodeName(device_path(device));
    struct stat node {};
    if (stat(path.constData(), &node) != 0) return fault_of_errno(errno);
    if (access(path.constData(), R_OK | W_OK) != 0) return fault_of_errno(errno);
    if (!S_ISCHR(node.st_mode)) return PortFault::not_a_port;

    const int descriptor = open(path.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) return fault_of_errno(errno);
    const PortFault fault = look_at_line(descriptor);
    close(descriptor);
    return fault;
}

QString port_fault_text(PortFault fault, const QString& device, const Texts& texts) {
    switch (fault) {
        case PortFault::none:
            return {};
        case PortFault::missing:
            return device.isEmpty() ? texts.pick(kNoPortChosen) : texts.pick(kMissing).arg(device);
        case PortFault::no_permission:
            return no_permission_text(device, texts);
        case PortFault::busy:
            return texts.pick(kBusy).arg(device);
        case PortFault::not_a_port:
            return texts.pick(kNotAPort).arg(device);
        case PortFault::vanished:
            return texts.pick(kVanished).arg(device);
        case PortFault::other:
            break;
    }
    return texts.pick(kOther).arg(device);
}

}  // namespace m47
