// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "line_recorder.h"
#include "serial_port.h"

namespace m47::link {

/// A line as it is, of which a recorder is told what happens.
class RecordingPort : public SerialPort {
  public:
    /// Both outlive it.
    RecordingPort(SerialPort& port, LineRecorder& recorder) : port_(port), recorder_(recorder) {}

    void select(const QString& device) override { port_.select(device); }
    void follow(const QString& device) override { port_.follow(device); }
    QString path() const override { return port_.path(); }
    bool open() override;
    void close() override;
    bool is_open() const override { return port_.is_open(); }
    void clear() override { port_.clear(); }
    QByteArray read_all() override;
    bool write(char character) override;
    bool wait_for_input(std::chrono::milliseconds limit) override;
    PortFault fault() const override { return port_.fault(); }

  private:
    void look_for_loss();

    SerialPort& port_;
    LineRecorder& recorder_;
    bool open_ = false;  ///< as far as was told
};

}  // namespace m47::link
