// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <utility>

#include "clock.h"
#include "clock_tick.h"
#include "serial_port.h"

namespace bench {

/// A clock that goes on when somebody waits on it, at no cost; its time is real for whoever asks
/// how long something took.
class SteppingClock : public m47::link::Clock {
  public:
    float now() const override { return m47::link::tick_reading(time_); }
    double until_next_tick() const override { return seconds(m47::link::time_to_next_tick(time_)); }
    void sleep(double seconds) override {
        time_ += std::chrono::nanoseconds{static_cast<std::int64_t>(seconds * 1e9) + 1};
    }
    QDateTime date_time() const override { return QDateTime::currentDateTime(); }
    double steady() const override {
        return seconds(std::chrono::steady_clock::now().time_since_epoch());
    }

  private:
    static double seconds(std::chrono::nanoseconds time) {
        return std::chrono::duration<double>(time).count();
    }

    std::chrono::nanoseconds time_ = std::chrono::hours{5};
};

/// A line on which every question has its answer before it is asked, in two pieces.
class InstantMeter : public m47::link::SerialPort {
  public:
    explicit InstantMeter(QByteArray answer) : answer_(std::move(answer)) {}

    void select(const QString&) override {}
    void follow(const QString&) override {}
    QString path() const override { return QStringLiteral("/dev/ttyUSB0"); }
    bool open() override { return open_ = true; }
    void close() override { open_ = false; }
    bool is_open() const override { return open_; }
    void clear() override { waiting_.clear(); }
    QByteArray read_all() override {
        const QByteArray piece = waiting_.left((answer_.size() + 1) / 2);
        waiting_.remove(0, piece.size());
        return piece;
    }
    bool write(char character) override {
        if (character == '\r') waiting_ = answer_;
        return true;
    }
    bool wait_for_input(std::chrono::milliseconds) override { return !waiting_.isEmpty(); }
    m47::link::PortFault fault() const override { return m47::link::PortFault::none; }

  private:
    QByteArray answer_;
    QByteArray waiting_;
    bool open_ = false;
};

}  // namespace bench
