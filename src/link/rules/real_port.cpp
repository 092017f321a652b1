// SPDX-License-Identifier: GPL-3.0-or-later
#include "real_port.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <thread>

#include "port_diagnosis.h"
#include "port_lock.h"
#include "serial_line.h"

namespace m47::link {
namespace {

using std::chrono::milliseconds;

/// Twenty times what the line brings within one turn of the link; the rest waits in the kernel.
constexpr qint64 kReadBuffer = qint64{64} * 1024;
constexpr milliseconds kDrainLimit{50};

}  // namespace

RealPort::RealPort() {
    port_.setBaudRate(QSerialPort::Baud38400);
    port_.setDataBits(QSerialPort::Data8);
    port_.setParity(QSerialPort::NoParity);
    port_.setStopBits(QSerialPort::TwoStop);
    port_.setFlowControl(QSerialPort::NoFlowControl);
    port_.setReadBufferSize(kReadBuffer);
}

RealPort::~RealPort() {
    RealPort::close();
}

void RealPort::select(const QString& device) {
    follow(device);
    known_.forget();
}

void RealPort::follow(const QString& device) {
    device_ = device_path(device);
}

bool RealPort::open() {
    fault_ = PortFault::none;
    if (device_.isEmpty()) return fail(PortFault::missing);
    // By its own name, not by that of a link to it: that is how other programs lock it.
    const QString node = QFileInfo(device_).canonicalFilePath();
    const QString path = node.isEmpty() ? device_ : node;
    const QString lock_file = lock_file_of(path);
    if (is_no_lock_file(lock_file)) return fail(PortFault::lock_names_nobody);
    if (is_held_by_another(lock_file, path)) return fail(PortFault::busy);
    port_.setPortName(path);
    if (!port_.open(QIODevice::ReadWrite)) {
        // The error does not tell a busy port from one without permission. Where nothing else
        // speaks against the device, it is its lock file that could not be made.
        const bool refused = port_.error() == QSerialPort::PermissionError;
        const PortFault seen = look_at(device_);
        if (seen != PortFault::none) return fail(seen);
        return fail(refused ? look_at_lock_file(lock_file_of(device_)) : PortFault::other);
    }
    if (!platform::keep_line(port_.handle())) return fail(PortFault::busy);
    if (!known_.is_the_same(port_.handle(), path)) return fail(PortFault::another_device);
    clear();
    return true;
}

bool RealPort::fail(PortFault fault) {
    if (port_.isOpen()) port_.close();
    port_.clearError();
    fault_ = fault;
    return false;
}

void RealPort::close() {
    if (!port_.isOpen()) return;
    drain();
    port_.close();
    port_.clearError();
}

bool RealPort::is_open() const {
    return port_.isOpen();
}

void RealPort::clear() {
    if (port_.isOpen()) port_.clear();
    port_.clearError();
}

QByteArray RealPort::read_all() {
    if (!port_.isOpen()) return {};
    if (port_.bytesAvailable() == 0) {
        // Takes over what still lies in the kernel.
        port_.waitForReadyRead(0);
        port_.clearError();
    }
    return port_.readAll();
}

bool RealPort::write(char character) {
    if (!port_.isOpen()) return false;
    const bool gone_out = port_.putChar(character) && port_.flush();
    if (!gone_out) {
        // The same error stands for an unplugged line and for one whose other side does not read.
        port_.clearError();
        close_when_lost();
    }
    return gone_out;
}

bool RealPort::wait_for_input(milliseconds limit) {
    if (!port_.isOpen()) return false;
    if (port_.bytesAvailable() > 0) return true;
    QElapsedTimer timer;
    timer.start();
    if (port_.waitForReadyRead(static_cast<int>(limit.count()))) return true;
    port_.clearError();
    close_when_lost();
    const milliseconds left = limit - milliseconds(timer.elapsed());
    if (port_.isOpen() && left.count() > 0) std::this_thread::sleep_for(left);
    return false;
}

void RealPort::close_when_lost() {
    if (platform::line_is_there(port_.handle())) return;
    port_.close();
    port_.clearError();
    fault_ = PortFault::vanished;
}

/// Closing puts the line's old settings back: a character still on its way would go out wrong.
void RealPort::drain() const {
    platform::wait_for_line_to_drain(port_.handle(), kDrainLimit);
}

}  // namespace m47::link
