// SPDX-License-Identifier: GPL-3.0-or-later
#include "fake_port.h"

#include <algorithm>

namespace m47 {

void FakePort::feed(const QByteArray& bytes, double seconds) {
    const double at = clock_.elapsed() + seconds;
    const auto later =
        std::upper_bound(arrivals_.begin(), arrivals_.end(), at,
                         [](double time, const Arrival& arrival) { return time < arrival.at; });
    arrivals_.insert(later, Arrival{at, bytes});
}

void FakePort::hush() {
    while (!arrivals_.empty() && arrivals_.back().at > clock_.elapsed()) arrivals_.pop_back();
}

void FakePort::vanish_in(double seconds) {
    vanish_at_ = clock_.elapsed() + seconds;
}

QStringList FakePort::take_commands() {
    QStringList commands = QString::fromLatin1(written).split(u'\r');
    // What follows the last CR is no command yet.
    written = commands.takeLast().toLatin1();
    return commands;
}

QByteArray FakePort::good(const QByteArray& command, const QByteArray& value) {
    QByteArray answer = command + '\r';
    if (!value.isEmpty()) answer += value + '\r';
    return answer + "OK\r";
}

void FakePort::select(const QString& chosen) {
    follow(chosen);
    another_device = false;
}

void FakePort::follow(const QString& chosen) {
    device = chosen;
}

bool FakePort::open() {
    check_line();
    fault_ = device.isEmpty() ? link::PortFault::missing : open_fault;
    if (fault_ == link::PortFault::none && another_device) fault_ = link::PortFault::another_device;
    if (fault_ != link::PortFault::none) return false;
    open_ = true;
    ++opens;
    clear();
    return true;
}

void FakePort::close() {
    if (open_) ++closes;
    open_ = false;
}

bool FakePort::is_open() const {
    return open_;
}

void FakePort::clear() {
    while (input_ready()) arrivals_.pop_front();
}

QByteArray FakePort::read_all() {
    check_line();
    QByteArray bytes;
    while (open_ && input_ready()) {
        bytes += arrivals_.front().bytes;
        arrivals_.pop_front();
    }
    return bytes;
}

bool FakePort::write(char character) {
    check_line();
    if (!open_ || stalled) return false;
    written += character;
    if (character != '\r') {
        line_ += character;
        return true;
    }
    const QByteArray command = line_;
    line_.clear();
    if (answer) feed(answer(command), answer_delay);
    return true;
}

bool FakePort::wait_for_input(std::chrono::milliseconds limit) {
    check_line();
    if (!open_) return false;
    if (input_ready()) return true;
    const double now = clock_.elapsed();
    double until = now + std::chrono::duration<double>(limit).count();
    if (!arrivals_.empty()) until = std::min(until, arrivals_.front().at);
    if (vanish_at_ >= 0) until = std::min(until, vanish_at_);
    clock_.sleep(until - now);
    check_line();
    return open_ && input_ready();
}

link::PortFault FakePort::fault() const {
    return fault_;
}

void FakePort::check_line() {
    if (vanish_at_ < 0 || clock_.elapsed() < vanish_at_) return;
    vanish_at_ = -1;
    open_fault = link::PortFault::missing;
    if (!open_) return;
    open_ = false;
    fault_ = link::PortFault::vanished;
}

bool FakePort::input_ready() const {
    return !arrivals_.empty() && arrivals_.front().at <= clock_.elapsed();
}

}  // namespace m47
