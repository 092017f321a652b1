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

#include "port_lock.h"

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
constexpr Bilingual kBusyBy{" It is %1, process %2.", " È %1, processo %2."};
constexpr Bilingual kLockFolderFull{
    "There is no room left in %2 for the lock file of %1. Make room there, then reconnect.",
    "Non c'è più spazio in %2 per il file di blocco di %1. Liberare spazio, poi ricollegare."};
constexpr Bilingual kLockFolderShut{
    "No lock file can be made for %1: the folder %2 needs to be writable for you.",
    "Non si può creare un file di blocco per %1: la cartella %2 deve essere scrivibile."};
constexpr Bilingual kLockLeftBehind{
    "No program uses %1, but the lock file %2 of one that has ended is still there. Delete it: "
    "\"sudo rm %2\", then reconnect.",
    "Nessun programma usa %1, ma c'è ancora il file di blocco %2 di un programma terminato. "
    "Cancellarlo: \"sudo rm %2\", poi ricollegare."};
constexpr Bilingual kLockNamesNobody{
    "The lock file %2 names no program that uses %1. Delete it: \"sudo rm %2\", then reconnect.",
    "Il file di blocco %2 non nomina alcun programma che usi %1. Cancellarlo: \"sudo rm %2\", "
    "poi ricollegare."};
constexpr Bilingual kLockLeadsNowhere{
    "In the place of the lock file of %1 there is a link that leads nowhere. Delete it: "
    "\"sudo rm %2\", then reconnect.",
    "Al posto del file di blocco di %1 c'è un collegamento che non porta a nulla. Cancellarlo: "
    "\"sudo rm %2\", poi ricollegare."};
constexpr Bilingual kNotAPort{"%1 is no serial port.", "%1 non è una porta seriale."};
constexpr Bilingual kVanished{"The line to %1 was lost: the device has been unplugged.",
                              "La linea verso %1 è caduta: il dispositivo è stato scollegato."};
constexpr Bilingual kAnotherDevice{
    "Another device stands behind %1 now, or it was plugged in anew. Check that it is the right "
    "meter, then reconnect.",
    "Dietro %1 c'è ora un altro dispositivo, oppure è stato ricollegato. Verificare che lo "
    "strumento sia quello giusto, poi ricollegare."};
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

QString busy_text(const QString& device, const Texts& texts) {
    QString text = texts.pick(kBusy).arg(device);
    const std::optional<PortHolder> holder = lock_file_holder(lock_file_of(device));
    if (holder && !holder->program.isEmpty())
        text += texts.pick(kBusyBy).arg(holder->program, QString::number(holder->process));
    return text;
}

QString lock_text(const Bilingual& words, const QString& device, const Texts& texts) {
    return texts.pick(words).arg(device, lock_file_of(device));
}

QString lock_folder_text(const Bilingual& words, const QString& device, const Texts& texts) {
    const QString file = lock_file_of(device);
    const QString folder =
        file.isEmpty() ? lock_folders().constFirst() : QFileInfo(file).absolutePath();
    return texts.pick(words).arg(device, folder);
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
            return busy_text(device, texts);
        case PortFault::not_a_port:
            return texts.pick(kNotAPort).arg(device);
        case PortFault::vanished:
            return texts.pick(kVanished).arg(device);
        case PortFault::another_device:
            return texts.pick(kAnotherDevice).arg(device);
        case PortFault::lock_folder_full:
            return lock_folder_text(kLockFolderFull, device, texts);
        case PortFault::lock_folder_shut:
            return lock_folder_text(kLockFolderShut, device, texts);
        case PortFault::lock_left_behind:
            return lock_text(kLockLeftBehind, device, texts);
        case PortFault::lock_names_nobody:
            return lock_text(kLockNamesNobody, device, texts);
        case PortFault::lock_leads_nowhere:
            return lock_text(kLockLeadsNowhere, device, texts);
        case PortFault::other:
            break;
    }
    return texts.pick(kOther).arg(device);
}

}  // namespace m47
