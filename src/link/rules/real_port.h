// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSerialPort>

#include "known_device.h"
#include "serial_port.h"

namespace m47::link {

/// A serial device of the system, or a pseudo-terminal. It needs no event loop, and one that runs
/// meanwhile does no harm.
class RealPort : public SerialPort {
  public:
    RealPort();
    ~RealPort() override;

    void select(const QString& device) override;
    void follow(const QString& device) override;
    bool open() override;
    void close() override;
    bool is_open() const override;
    void clear() override;
    QByteArray read_all() override;
    bool write(char character) override;
    bool wait_for_input(std::chrono::milliseconds limit) override;
    PortFault fault() const override { return fault_; }
    QString path() const override { return device_; }

  private:
    bool fail(PortFault fault);
    void close_when_lost();
    void drain() const;

    QSerialPort port_;
    QString device_;
    platform::KnownDevice known_;
    PortFault fault_ = PortFault::none;
};

}  // namespace m47::link
