// SPDX-License-Identifier: GPL-3.0-or-later
#include "port_list.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSerialPortInfo>
#include <algorithm>

#include "port_diagnosis.h"

namespace m47::link {
namespace {

QString on_board_name(int number) {
    return QStringLiteral("ttyS%1").arg(number - 1);
}

/// The ports that have a number of their own, whether it is used for them or not.
bool is_on_board(const QString& device) {
    const QString name = QFileInfo(device).fileName();
    for (int number = 1; number <= PortList::kPorts; ++number)
        if (name == on_board_name(number)) return true;
    return false;
}

/// The one path of a device that has several.
QString true_path(const QString& device) {
    const QString path = QFileInfo(device).canonicalFilePath();
    return path.isEmpty() ? device : path;
}

bool is_among(const QMap<int, QString>& devices, const QString& device) {
    const QString path = true_path(device);
    return std::any_of(devices.begin(), devices.end(),
                       [&](const QString& known) { return true_path(known) == path; });
}

/// From the true path of each adapter to the name that it keeps when it is plugged in elsewhere.
QMap<QString, QString> persistent_names(const QString& dev) {
    QMap<QString, QString> names;
    const QDir by_id(dev + QStringLiteral("/serial/by-id"));
    const QFileInfoList links = by_id.entryInfoList(QDir::System | QDir::Files, QDir::Name);
    for (const QFileInfo& link : links) names.insert(true_path(link.filePath()), link.filePath());
    return names;
}

}  // namespace

QStringList reported_devices() {
    QStringList devices;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : ports) devices += port.systemLocation();
    return devices;
}

QString reported_description(const QString& device) {
    const QSerialPortInfo port(QFileInfo(true_path(device)).fileName());
    return port.isNull() ? QString() : port.description();
}

QString PortList::description(int number) const {
    const QString device = this->device(number);
    if (device.isEmpty()) return {};
    const QString path = true_path(device);
    const QString node =
        path.startsWith(sources_.dev + u'/') ? path.mid(sources_.dev.size() + 1) : path;
    const QString what = sources_.described(device);
    return what.isEmpty() ? node : QStringLiteral("%1 (%2)").arg(what, node);
}

std::optional<int> PortList::free_number() const {
    for (int number = 1; number <= kPorts; ++number)
        if (device(number).isEmpty()) return number;
    return std::nullopt;
}

bool PortList::add(const QString& entry) {
    const qsizetype equals = entry.indexOf(u'=');
    if (equals < 0) return false;
    bool whole = false;
    const int number = entry.left(equals).toInt(&whole);
    const QString device = entry.mid(equals + 1);
    if (!whole || number < 1 || number > kPorts || device.isEmpty()) return false;
    entries_.insert(number, device_path(device));
    refresh();
    return true;
}

QString PortList::device(int number) const {
    if (!devices_) {
        devices_ = entries_;
        find_on_board(*devices_);
        find_adapters(*devices_);
    }
    return devices_->value(number);
}

void PortList::find_on_board(Devices& devices) const {
    for (int number = 1; number <= kPorts; ++number) {
        if (devices.contains(number)) continue;
        const QString name = on_board_name(number);
        const QString device = sources_.dev + u'/' + name;
        QFile type(sources_.sys + QStringLiteral("/class/tty/") + name + QStringLiteral("/type"));
        if (!QFileInfo::exists(device) || !type.open(QIODevice::ReadOnly)) continue;
        // Type 0 is a number that the driver keeps for a port that is not built in.
        if (type.readAll().trimmed() != "0") devices.insert(number, device);
    }
}

void PortList::find_adapters(Devices& devices) const {
    const QMap<QString, QString> names = persistent_names(sources_.dev);
    QStringList adapters;
    const QStringList reported = sources_.reported();
    for (const QString& device : reported)
        if (!is_on_board(device) && !is_among(devices, device))
            adapters += names.value(true_path(device), device);
    adapters.removeDuplicates();
    std::sort(adapters.begin(), adapters.end());
    for (int number = 1; number <= kPorts && !adapters.isEmpty(); ++number)
        if (!devices.contains(number)) devices.insert(number, adapters.takeFirst());
}

QString PortList::persistent_name(const QString& device) const {
    return persistent_names(sources_.dev).value(true_path(device), device);
}

}  // namespace m47::link
