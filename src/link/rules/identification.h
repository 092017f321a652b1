// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "link.h"
#include "port_list.h"
#include "texts.h"

namespace m47::link {

/// What picking a port changes on the main window besides the link's own display.
class MainWindowView {
  public:
    virtual ~MainWindowView() = default;

    virtual QString caption() const = 0;
    virtual void set_caption(const QString& caption) = 0;
    /// The toolbar button "asl".
    virtual void enable_asl(bool on) = 0;
};

/// The entries of the list of ports: "1" to "10".
QStringList port_entries();

/// The firmware version in an answer to "VER?", 305 for "V3.0.5": three single characters at fixed
/// places, joined. 0 where they are no number.
double version_number(const QString& reply);

/// Picking a port: asks the meter behind it who it is.
class Identification {
  public:
    Identification(Link& link, Texts& texts, const PortList& ports, MainWindowView& window)
        : link_(link), texts_(texts), ports_(ports), window_(window) {}

    /// The user picks entry `index` (0 to 9) of the list; any other index only closes the link. On
    /// success the link is up and the status green; otherwise red. The language is English then,
    /// and the window's caption has grown by the meter's version, in any case.
    void porta_Click(int index);

    /// Called when a port has been picked, before its meter is asked.
    std::function<void()> on_picked;

    /// Asked before the meter behind a device is; false leaves it alone, as if none had answered.
    std::function<bool(const QString& device)> claim;

    /// Called with each answer of a meter to the question for its version; empty where none came.
    std::function<void(const QString& version)> on_version;

    /// Called when a meter has answered, behind the question for its version.
    std::function<void()> on_connected;

    /// Called by reconnect() when another device than before is found, or the same that was plugged
    /// in anew, before the meter behind it is asked. The port's fault is another_device then.
    std::function<void()> on_another_device;

    /// Identifies the meter behind the device picked last once more, wherever that is plugged in
    /// now. The language stays and the caption does not grow again. Does nothing before a port has
    /// been picked.
    void reconnect();

    /// The number (1 to 10) of the port that the meter answers on, 0 while none does.
    int port_in_use() const { return link_.port_connected ? link_.port_number : 0; }
    const Texts& texts() const { return texts_; }

    /// The device picked last, by its persistent name where it has one; empty before the first.
    const QString& device() const { return device_; }

  private:
    bool take_line(const QString& device);
    void ask_meter();
    void take_another_device();
    void close_link(int number);
    void show_presence(int number, bool present);
    void show_version(const QString& version);

    Link& link_;
    Texts& texts_;
    const PortList& ports_;
    MainWindowView& window_;
    QString device_;
    QString caption_;  ///< of the window before the version was added
};

}  // namespace m47::link
