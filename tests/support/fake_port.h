// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <functional>

#include "serial_port.h"
#include "virtual_clock.h"

namespace m47 {

/// A serial port without a line: a test scripts what the meter answers and when, and can stall,
/// break or unplug it. It records every byte that was written, in order.
class FakePort : public link::SerialPort {
  public:
    explicit FakePort(VirtualClock& clock) : clock_(clock) {}

    // What the test scripts ----------------------------------------------------------------
    /// Called at each CR with the command before it; what it returns arrives `answer_delay`
    /// seconds later, all at once.
    std::function<QByteArray(const QByteArray& command)> answer;
    double answer_delay = 0.01;
    /// Bytes that arrive `seconds` from now whatever is written.
    void feed(const QByteArray& bytes, double seconds = 0);
    /// What the next and every later open() finds; `none` opens.
    link::PortFault open_fault = link::PortFault::none;
    /// Nothing of what was fed comes any more, but for what has arrived.
    void hush();
    /// The device is pulled `seconds` from now.
    void vanish_in(double seconds);
    /// While true nothing that is written goes out.
    bool stalled = false;

    // What the test asserts ----------------------------------------------------------------
    QByteArray written;
    /// What select() chose last.
    QString device = QStringLiteral("/dev/fake");
    /// Another device stands there than the one found at the last choice.
    bool another_device = false;
    int opens = 0;
    int closes = 0;
    /// Everything written so far, cut at each CR, and forgets it.
    QStringList take_commands();

    /// An answer as the meter frames it: echo, CR, then `value` and CR where it is not empty,
    /// "OK", CR.
    static QByteArray good(const QByteArray& command, const QByteArray& value = {});

    void select(const QString& device) override;
    void follow(const QString& device) override;
    QString path() const override { return device; }
    bool open() override;
    void close() override;
    bool is_open() const override;
    void clear() override;
    QByteArray read_all() override;
    bool write(char character) override;
    bool wait_for_input(std::chrono::milliseconds limit) override;
    link::PortFault fault() const override;

  private:
    struct Arrival {
        double at;
        QByteArray bytes;
    };
    void check_line();
    bool input_ready() const;

    VirtualClock& clock_;
    std::deque<Arrival> arrivals_;
    QByteArray line_;
    bool open_ = false;
    link::PortFault fault_ = link::PortFault::none;
    double vanish_at_ = -1;
};

}  // namespace m47
