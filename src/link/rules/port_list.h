// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <utility>

namespace m47::link {

/// The system locations of the serial lines that the system reports now.
QStringList reported_devices();

/// What the system says the device of the serial line `device` is, "FT232R USB UART"; empty where
/// it says nothing.
QString reported_description(const QString& device);

/// Where PortList looks for serial lines.
struct PortSources {
    QString sys = QStringLiteral("/sys");
    QString dev = QStringLiteral("/dev");
    std::function<QStringList()> reported = reported_devices;
    std::function<QString(const QString& device)> described = reported_description;
};

/// The device behind each of the port numbers 1 to 10. A number with an entry of its own stands for
/// that device; number N else for on-board port N where there is hardware behind it; adapters take
/// the numbers that are left, in the order of their persistent names.
class PortList {
  public:
    static constexpr int kPorts = 10;

    explicit PortList(PortSources sources = {}) : sources_(std::move(sources)) {}

    /// Adds an entry "N=DEVICE", N from 1 to 10; a later one for the same number replaces it. False
    /// for anything else, and the list is unchanged then.
    bool add(const QString& entry);

    /// Looks anew which lines there are when it is asked next: looking through the system's devices
    /// takes longer than all else at the start of the program.
    void refresh() { devices_.reset(); }

    /// The name under which `device` comes back wherever it is plugged in; `device` itself where it
    /// has none.
    QString persistent_name(const QString& device) const;

    /// The device behind `number`, empty when there is none.
    QString device(int number) const;

    /// What stands behind `number`, for the user: what it is, and its node in the system,
    /// "FT232R USB UART (ttyUSB0)"; empty where nothing does.
    QString description(int number) const;

    /// The lowest number that nothing stands behind; nothing where all have a device.
    std::optional<int> free_number() const;

  private:
    using Devices = QMap<int, QString>;

    void find_on_board(Devices& devices) const;
    void find_adapters(Devices& devices) const;

    PortSources sources_;
    Devices entries_;
    mutable std::optional<Devices> devices_;  ///< nothing as long as nobody has asked
};

}  // namespace m47::link
