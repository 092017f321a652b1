// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <QByteArray>
#include <QString>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "clock.h"
#include "clock_tick.h"

namespace bench {

/// A character at the pace of the wire.
inline constexpr std::chrono::nanoseconds kCharacter{11 * 1'000'000'000LL / 38'400};

/// What a meter says to a command, and how long it thinks before.
using MeterAnswer = std::function<QByteArray(const QByteArray& command)>;
using MeterDelay = std::function<std::chrono::nanoseconds(const QByteArray& command)>;

inline double seconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

/// What a transaction that begins now needs where the meter takes `meter`: one tick behind each
/// character but the first, whose tick has begun already, and the meter from the CR on, during
/// which the last tick passes too.
inline double ideal_time(const m47::link::Clock& clock, const QByteArray& command,
                         std::chrono::nanoseconds meter) {
    const double to_tick = clock.until_next_tick();
    const auto reading = std::chrono::duration<float>(clock.now());
    const double tick = seconds(
        m47::link::clock_tick(std::chrono::duration_cast<std::chrono::nanoseconds>(reading)));
    const auto ticks_to_cr = static_cast<double>(command.size() - 1);
    return to_tick + ticks_to_cr * tick + std::max(tick, seconds(meter));
}

/// A meter on a pseudo-terminal of its own: some time to think, then the answer at 38400 baud.
class PacedMeter {
  public:
    PacedMeter(MeterAnswer answer, MeterDelay delay)
        : answer_(std::move(answer)), delay_(std::move(delay)) {
        char path[128];
        if (openpty(&master_, &slave_, path, nullptr, nullptr) != 0) return;
        termios raw{};
        tcgetattr(slave_, &raw);
        cfmakeraw(&raw);
        tcsetattr(slave_, TCSANOW, &raw);
        device_ = QString::fromLocal8Bit(path);
        thread_ = std::thread([this] { run(); });
    }
    ~PacedMeter() {
        ending_ = true;
        if (thread_.joinable()) thread_.join();
        close(slave_);
        close(master_);
    }
    PacedMeter(const PacedMeter&) = delete;
    PacedMeter& operator=(const PacedMeter&) = delete;

    const QString& device() const { return device_; }

  private:
    void run() {
        QByteArray command;
        while (!ending_) {
            pollfd line{master_, POLLIN, 0};
            char character = 0;
            if (poll(&line, 1, 50) != 1 || read(master_, &character, 1) != 1) continue;
            command += character;
            if (character != '\r') continue;
            command.chop(1);
            send(std::chrono::steady_clock::now() + delay_(command), answer_(command));
            command.clear();
        }
    }

    void send(std::chrono::steady_clock::time_point due, const QByteArray& text) const {
        for (const char character : text) {
            due += kCharacter;
            std::this_thread::sleep_until(due);
            if (write(master_, &character, 1) != 1) return;
        }
    }

    MeterAnswer answer_;
    MeterDelay delay_;
    int master_ = -1;
    int slave_ = -1;
    QString device_;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

}  // namespace bench
