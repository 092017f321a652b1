// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_diagnosis.h"

#include <QDir>
#include <QFileInfo>
#include <optional>

#include "commands.h"
#include "port_lock.h"
#include "serial_line.h"

namespace m47::link {
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

constexpr Bilingual kRefused{"the meter refused %1 three times",
                             "lo strumento ha rifiutato %1 tre volte"};
constexpr Bilingual kNeedsOscillator{
    "; a frequency of the sky needs the oscillator of its LNB: in a pass \"Tune everything in a "
    "pass\" (--full-tune), else \"L.O. MHz\" (--oscillator)",
    "; una frequenza del cielo richiede l'oscillatore del suo LNB: in una passata \"Imposta tutto "
    "in una passata\" (--full-tune), altrimenti \"O.L. MHz\" (--oscillator)"};

PortFault fault_of(const std::error_code& error) {
    switch (static_cast<std::errc>(error.value())) {
        case std::errc::permission_denied:
        case std::errc::operation_not_permitted:
            return PortFault::no_permission;
        case std::errc::device_or_resource_busy:
        case std::errc::operation_would_block:
            return PortFault::busy;
        case std::errc::inappropriate_io_control_operation:
            return PortFault::not_a_port;
        // A node without hardware behind it opens or not, but has no line to talk about.
        case std::errc::io_error:
        case std::errc::no_such_file_or_directory:
        case std::errc::not_a_directory:
        case std::errc::no_such_device:
        case std::errc::no_such_device_or_address:
            return PortFault::missing;
        default:
            return error ? PortFault::other : PortFault::none;
    }
}

QString no_permission_text(const QString& device, const Texts& texts) {
    QString text = texts.pick(kNoPermission).arg(device);
    if (const std::optional<QString> group = platform::group_of_device(device))
        text += texts.pick(kJoinGroup).arg(*group, platform::name_of_user());
    return text;
}

QString busy_text(const QString& device, const Texts& texts) {
    QString text = texts.pick(kBusy).arg(device);
    const std::optional<platform::RunningProcess> holder = lock_file_holder(lock_file_of(device));
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
    return fault_of(platform::fault_of_line(device_path(device)));
}

const char* port_fault_name(PortFault fault) {
    switch (fault) {
        case PortFault::none:
            return "none";
        case PortFault::missing:
            return "missing";
        case PortFault::no_permission:
            return "no-permission";
        case PortFault::busy:
            return "busy";
        case PortFault::not_a_port:
            return "not-a-port";
        case PortFault::vanished:
            return "vanished";
        case PortFault::another_device:
            return "another-device";
        case PortFault::lock_folder_full:
            return "lock-folder-full";
        case PortFault::lock_folder_shut:
            return "lock-folder-shut";
        case PortFault::lock_left_behind:
            return "lock-left-behind";
        case PortFault::lock_names_nobody:
            return "lock-names-nobody";
        case PortFault::lock_leads_nowhere:
            return "lock-leads-nowhere";
        case PortFault::other:
            break;
    }
    return "other";
}

QString refused_text(const QString& command, const Texts& texts) {
    return texts.pick(kRefused).arg(command);
}

QString refusal_text(const QString& command, const Texts& texts) {
    const bool tunes = command.startsWith(command::kFrequency);
    return refused_text(command, texts) + (tunes ? texts.pick(kNeedsOscillator) : QString());
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

}  // namespace m47::link
