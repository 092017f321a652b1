// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>

namespace m47::link {

/// Why a port cannot be used, as far as the system tells.
enum class PortFault {
    none,
    missing,         ///< no such device
    no_permission,   ///< the device node is not readable and writable for this user
    busy,            ///< another program holds it
    not_a_port,      ///< the node is no serial line
    vanished,        ///< it was open and has gone
    another_device,  ///< not the one that was opened first behind the chosen path
    // No lock file can be made, though no other program holds the port.
    lock_folder_full,    ///< its folder takes no more files
    lock_folder_shut,    ///< its folder cannot be written
    lock_left_behind,    ///< the one that is there is that of a program that has ended
    lock_names_nobody,   ///< the one that is there is empty or no lock file
    lock_leads_nowhere,  ///< a link without a file stands in its place
    other,
};

/// The one serial line of the program at "38400,n,8,2": 38400 baud, no parity, 8 data bits, 2 stop
/// bits. Nothing here blocks but wait_for_input.
class SerialPort {
  public:
    virtual ~SerialPort() = default;

    /// Chooses the device that open() opens next; an empty one makes open() fail as missing. What
    /// is found there first is the device until the next choice: open() fails once another one has
    /// taken its place.
    virtual void select(const QString& device) = 0;

    /// Looks at `device` from now on for what was found at the last choice; open() fails as well
    /// where another one is found there. Where nothing was found yet it is a choice.
    virtual void follow(const QString& device) = 0;

    /// The absolute path of the chosen device.
    virtual QString path() const = 0;

    /// Opens the chosen device exclusively and clears both buffers. False: fault() says why.
    virtual bool open() = 0;
    virtual void close() = 0;

    /// False too once a line is seen to be lost; the port is closed then and fault() is vanished.
    virtual bool is_open() const = 0;

    /// Drops whatever waits in the receive and the transmit buffer.
    virtual void clear() = 0;

    /// All bytes that have arrived and were not read yet, none when there are none; never waits.
    virtual QByteArray read_all() = 0;

    /// Hands one character to the line. False: it did not go out (line lost, or the other side does
    /// not read; is_open() tells which).
    virtual bool write(char character) = 0;

    /// Waits at most `limit` for input, without using the processor. True when some is there. A
    /// line that is lost meanwhile is closed at once.
    virtual bool wait_for_input(std::chrono::milliseconds limit) = 0;

    /// Why the last open() failed or the line was lost.
    virtual PortFault fault() const = 0;
};

}  // namespace m47::link
